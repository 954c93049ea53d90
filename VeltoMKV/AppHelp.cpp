#include "VeltoMKV/AppHelp.h"

#include <QCoreApplication>
#include <QMessageBox>

#include "VeltoKit/platform/PlatformText.h"
#include "VeltoMKV/AppIcon.h"

namespace velto::AppHelp {

void showHelp(QWidget* parent) {
    QMessageBox help(parent);
    help.setWindowTitle(QStringLiteral("Ayuda de VeltoMKV"));
    help.setIconPixmap(appIcon().pixmap(64, 64));
    help.setTextFormat(Qt::RichText);
    help.setText(
        QStringLiteral(
            "<p><b>Ayuda de VeltoMKV</b></p>"
            "<p>Arrastrá un video a la ventana o elegilo con «Elegir archivo…». VeltoMKV busca la "
            "pista de subtítulos, la traduce al español con el motor que elijas y guarda una copia "
            "del video con la pista nueva al lado del original, que nunca se toca.</p>"
            "<p>Si soltás varios videos o una carpeta, arma una lista y los traduce uno tras "
            "otro; al final te dice qué quedó listo, qué omitió y por qué.</p>"
            "<p>Necesitás ffmpeg: instalalo con «") +
        PlatformText::installFfmpeg() +
        QStringLiteral("» o bajalo de <a href=\"https://ffmpeg.org/download.html\">"
                       "ffmpeg.org</a>.</p>"));
    help.setTextInteractionFlags(Qt::TextBrowserInteraction);
    help.exec();
}

void showAbout(QWidget* parent) {
    QMessageBox::about(
        parent, QStringLiteral("Acerca de VeltoMKV"),
        QStringLiteral("<p><b>VeltoMKV</b></p><p>Versión ") +
            QCoreApplication::applicationVersion() +
            QStringLiteral("</p><p>Agrega a tus videos una pista de subtítulos en español, "
                           "traducida con el motor que elijas.</p>"));
}

} // namespace velto::AppHelp
