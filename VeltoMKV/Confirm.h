#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// The questions the window asks before it does something the user cannot take back.
namespace velto::Confirm {

// True when the file at `output` may be replaced by the new copy.
bool replaceOutput(QWidget* parent, const QString& output);
// The same for several files at once: one question for all of them.
bool replaceOutputs(QWidget* parent, const QStringList& outputs);
// True when the running job may be stopped so the program can end.
bool quitDuringJob(QWidget* parent);
// True when the cache may be emptied; `size` is what it holds, in the user's units.
bool emptyCache(QWidget* parent, const QString& size);

} // namespace velto::Confirm
