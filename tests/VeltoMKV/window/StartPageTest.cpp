#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/AppShell.h"
#include "VeltoMKV/DropZone.h"
#include "VeltoMKV/EngineLine.h"
#include "VeltoMKV/MainWindow.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QString silentStore = u"El llavero del sistema no respondió a tiempo."_s;

// A new user on Claude whose credential store keeps silent.
class StartPageTest : public ::testing::Test {
protected:
    StartPageTest()
        : shell(
              std::make_unique<QSettings>(folder.filePath(u"VeltoMKV.ini"_s), QSettings::IniFormat),
              [](const QString&) -> QString { throw KeychainError(silentStore); }) {
        QStandardPaths::setTestModeEnabled(true);
        shell.preferences().setProviderIDStorage(Provider::claude().id);
        shell.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&shell.window()));
    }

    QTemporaryDir folder;
    AppShell shell;
};

TEST_F(StartPageTest, AStoreThatKeepsSilentIsNamedInsteadOfAMissingKey) {
    EXPECT_EQ(shell.window().startEngine()->text()->text(), silentStore);
}

TEST_F(StartPageTest, ASmallWindowScrollsToTheEngineButtonWithoutCoveringTheHeading) {
    MainWindow& window = shell.window();
    window.setMinimumSize(0, 0);
    window.resize(300, 260);
    QApplication::processEvents();
    QPushButton* choose = window.startEngine()->chooseButton();
    auto* area = window.dropZone()->findChild<QScrollArea*>();
    ASSERT_TRUE(area);
    area->ensureWidgetVisible(choose);
    QApplication::processEvents();
    const QRect shown(choose->mapTo(&window, QPoint(0, 0)), choose->size());
    EXPECT_TRUE(window.rect().contains(shown)) << shown.x() << ',' << shown.y();
    QLabel* heading = nullptr;
    QLabel* icon = nullptr;
    for (QLabel* label : window.dropZone()->findChildren<QLabel*>()) {
        if (label->text() == u"Arrastrá un video acá"_s)
            heading = label;
        else if (!label->pixmap().isNull() && !icon)
            icon = label;
    }
    ASSERT_TRUE(heading && icon);
    EXPECT_LE(icon->geometry().bottom(), heading->geometry().top());
    const QString screenshots = QStringLiteral(VELTO_BINARY_DIR "/screenshots");
    QDir().mkpath(screenshots);
    window.grab().save(screenshots + u"/main-first-launch-small.png"_s);
}

} // namespace
