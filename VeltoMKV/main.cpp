#include <QApplication>
#include <QSettings>

#include "VeltoMKV/AppShell.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    velto::AppShell::configureApplication();
    velto::AppShell shell(velto::Preferences::platformStore(), velto::AppShell::keychainReader());
    shell.openArguments(QApplication::arguments().mid(1));
    shell.show();
    return QApplication::exec();
}
