#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/SettingsDialog.h"
#include "VeltoMKV/state/AppState.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

// What a first-time user tripped over in the settings window, provider by provider.
class SettingsFirstRunTest : public ::testing::Test {
protected:
    SettingsFirstRunTest()
        : preferences(std::make_unique<QSettings>(QDir(folder.path()).filePath(u"V.ini"_s),
                                                  QSettings::IniFormat),
                      [](const QString&) { return QString(); })
        , dialog(preferences, state, nullptr) {
        preferences.setKeyWriter([](const QString&, const QString&) {});
        dialog.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    }

    void choose(const Provider& provider) {
        dialog.findChild<QListWidget*>()->setCurrentRow(int(Provider::all().indexOf(provider)));
    }
    template <typename Widget>
    Widget* named(const QString& name) {
        for (Widget* widget : dialog.findChildren<Widget*>()) {
            if (widget->accessibleName() == name)
                return widget;
        }
        return nullptr;
    }
    bool showsText(const QString& start) {
        for (QLabel* label : dialog.findChildren<QLabel*>()) {
            if (label->isVisibleTo(&dialog) && label->text().startsWith(start))
                return true;
        }
        return false;
    }

    QTemporaryDir folder;
    Preferences preferences;
    AppState state;
    SettingsDialog dialog;
};

TEST_F(SettingsFirstRunTest, ALocalServerTakesAKeyAndKeepsAnAddressOfItsOwn) {
    choose(Provider::local());
    auto* key = named<QLineEdit>(u"API key"_s);
    ASSERT_TRUE(key);
    EXPECT_TRUE(key->isVisibleTo(&dialog));
    EXPECT_TRUE(showsText(u"«Buscar» le pregunta a Modelo local qué modelos tiene instalados."_s));

    auto* presets = named<QComboBox>(u"Servidor"_s);
    const int own = presets->findText(u"Personalizado"_s);
    presets->setCurrentIndex(own);
    emit presets->activated(own);
    EXPECT_EQ(presets->currentText(), u"Personalizado"_s);

    // The eye says what a click does: its picture changes with the key's visibility.
    QAction* eye = key->actions().value(0);
    ASSERT_TRUE(eye);
    const QImage hidden = eye->icon().pixmap(32).toImage();
    eye->trigger();
    EXPECT_EQ(key->echoMode(), QLineEdit::Normal);
    EXPECT_NE(eye->icon().pixmap(32).toImage(), hidden);
}

TEST_F(SettingsFirstRunTest, AMissingClaudeProgramIsNeverAlsoReadyToTranslate) {
    if (!QStandardPaths::findExecutable(u"claude"_s).isEmpty())
        GTEST_SKIP() << "a claude program is installed here";
    preferences.setCliBinaryPath(folder.filePath(u"no-hay-claude"_s));
    choose(Provider::claudeCLI());
    ASSERT_TRUE(QTest::qWaitFor([&] { return showsText(u"No encuentro el binario"_s); },
                                AppTesting::patience));
    EXPECT_FALSE(showsText(u"Listo para traducir"_s));
}

} // namespace
