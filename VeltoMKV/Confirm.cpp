#include "VeltoMKV/Confirm.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace velto::Confirm {
namespace {

// A question whose safe answer is the default, so Return never destroys anything.
bool ask(QWidget* parent, const QString& question, const QString& detail, const QString& yes,
         const QString& no) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("VeltoMKV"), question,
                    QMessageBox::NoButton, parent);
    box.setInformativeText(detail);
    QPushButton* accept = box.addButton(yes, QMessageBox::DestructiveRole);
    QPushButton* keep = box.addButton(no, QMessageBox::RejectRole);
    box.setDefaultButton(keep);
    box.setEscapeButton(keep);
    box.exec();
    return box.clickedButton() == accept;
}

} // namespace

bool replaceOutput(QWidget* parent, const QString& output) {
    return ask(parent,
               QStringLiteral("Ya existe «") + QFileInfo(output).fileName() +
                   QStringLiteral("». ¿Lo reemplazo?"),
               QStringLiteral("Está en ") + QDir::toNativeSeparators(QFileInfo(output).path()) +
                   QStringLiteral(". Si lo reemplazo, se pierde; el video original no se toca."),
               QStringLiteral("Reemplazar"), QStringLiteral("Cancelar"));
}

bool replaceOutputs(QWidget* parent, const QStringList& outputs) {
    if (outputs.size() == 1)
        return replaceOutput(parent, outputs.first());
    return ask(parent,
               QStringLiteral("Ya existen ") + QString::number(outputs.size()) +
                   QStringLiteral(" de los archivos que voy a escribir. ¿Los reemplazo?"),
               QStringLiteral("Por ejemplo «") + QFileInfo(outputs.first()).fileName() +
                   QStringLiteral("». Si los reemplazo, se pierden; los videos originales no se "
                                  "tocan."),
               QStringLiteral("Reemplazar"), QStringLiteral("Cancelar"));
}

bool quitDuringJob(QWidget* parent) {
    return ask(parent, QStringLiteral("Todavía estoy traduciendo. ¿Salgo igual?"),
               QStringLiteral("Si salís, el trabajo se cancela y no queda ningún archivo a medias. "
                              "Con la caché activada, lo ya traducido no se vuelve a pagar."),
               QStringLiteral("Salir"), QStringLiteral("Seguir traduciendo"));
}

bool emptyCache(QWidget* parent, const QString& size) {
    return ask(parent, QStringLiteral("¿Vacío la caché de traducciones?"),
               QStringLiteral("Se liberan ") + size +
                   QStringLiteral(". Un trabajo cancelado o fallido ya no podrá retomar donde "
                                  "quedó."),
               QStringLiteral("Vaciar caché"), QStringLiteral("Cancelar"));
}

} // namespace velto::Confirm
