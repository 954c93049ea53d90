#pragma once

class QWidget;

// The help menu's two windows.
namespace velto::AppHelp {

// How to use the app and where ffmpeg comes from.
void showHelp(QWidget* parent);
// The version and what the app is for.
void showAbout(QWidget* parent);

} // namespace velto::AppHelp
