#include "VeltoMKV/SettingsDialog.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/state/AppState.h"
#include "support/ChatCompletionsServer.h"
#include "support/SecretService.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

// The settings window over throwaway preferences, with keys in the test run's private Secret
// Service, talking to a local OpenAI-compatible server.
class SettingsDialogTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!usePrivateSecretService())
            GTEST_SKIP() << "no private Secret Service: run through ctest";
        preferences = std::make_unique<Preferences>(std::make_unique<QSettings>(
            QDir(folder.path()).filePath(u"VeltoMKV.ini"_s), QSettings::IniFormat));
        state.checkTools(*preferences);
        dialog = std::make_unique<SettingsDialog>(*preferences, state, nullptr);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    }

    void choose(const Provider& provider) {
        auto* list = dialog->findChild<QListWidget*>();
        list->setCurrentRow(int(Provider::all().indexOf(provider)));
    }

    template <typename Widget>
    Widget* field(const QString& name) {
        for (Widget* widget : dialog->findChildren<Widget*>()) {
            if (widget->accessibleName() == name && widget->isVisibleTo(dialog.get()))
                return widget;
        }
        ADD_FAILURE() << "no visible field " << name.toStdString();
        return nullptr;
    }

    QPushButton* button(const QString& text) {
        return AppTesting::withText<QPushButton>(*dialog, text);
    }

    static void type(QLineEdit* edit, const QString& text) {
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Backspace);
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    // Whether a label on show starts with `text`; shows() waits for one.
    bool showing(const QString& text) {
        for (QLabel* label : dialog->findChildren<QLabel*>()) {
            if (label->text().startsWith(text) && label->isVisibleTo(dialog.get()))
                return true;
        }
        return false;
    }
    bool shows(const QString& text) {
        return QTest::qWaitFor([&] { return showing(text); }, AppTesting::patience);
    }

    QTemporaryDir folder;
    AppState state;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<SettingsDialog> dialog;
};

} // namespace

TEST_F(SettingsDialogTest, ALocalServerIsFoundSearchedChosenAndTested) {
    ChatCompletionsServer server({.key = {}});
    choose(Provider::local());
    EXPECT_EQ(preferences->providerIDStorage(), u"local"_s);
    EXPECT_TRUE(shows(u"«Buscar» le pregunta a Modelo local qué modelos tiene instalados."_s));
    // The eye says what a click does: its picture changes with the key's visibility.
    QLineEdit* key = field<QLineEdit>(u"API key"_s);
    ASSERT_TRUE(key && key->actions().value(0));
    const QImage hidden = key->actions()[0]->icon().pixmap(32).toImage();
    key->actions()[0]->trigger();
    EXPECT_EQ(key->echoMode(), QLineEdit::Normal);
    EXPECT_NE(key->actions()[0]->icon().pixmap(32).toImage(), hidden);

    // Choosing an address of its own keeps the choice.
    QComboBox* presets = field<QComboBox>(u"Servidor"_s);
    presets->setCurrentIndex(presets->findText(u"Personalizado"_s));
    emit presets->activated(presets->currentIndex());
    EXPECT_EQ(presets->currentText(), u"Personalizado"_s);
    type(field<QLineEdit>(u"Dirección"_s), server.baseUrl());
    EXPECT_EQ(preferences->baseURL(Provider::local()), server.baseUrl());
    EXPECT_TRUE(shows(u"Elegí un modelo en Ajustes: apretá «Buscar» para ver los que ofrece "
                      "Modelo local."_s));

    QTest::mouseClick(button(u"Buscar"_s), Qt::LeftButton);
    ASSERT_TRUE(shows(u"2 modelos disponibles."_s));
    QComboBox* found = field<QComboBox>(u"Modelos disponibles"_s);
    ASSERT_TRUE(found);
    ASSERT_EQ(found->count(), 2);
    found->setCurrentIndex(0);
    emit found->activated(0);
    EXPECT_EQ(preferences->model(Provider::local()), u"modelo-a"_s);
    EXPECT_EQ(field<QLineEdit>(u"Modelo"_s)->text(), u"modelo-a"_s);
    EXPECT_TRUE(shows(u"Listo para traducir"_s));

    QTest::mouseClick(button(u"Probar conexión"_s), Qt::LeftButton);
    EXPECT_TRUE(shows(u"Modelo local respondió correctamente. Todo listo."_s));

    // Another provider and back: each keeps its own model and address.
    choose(Provider::custom());
    EXPECT_EQ(field<QLineEdit>(u"Dirección"_s)->text(), Provider::custom().defaultBaseURL);
    EXPECT_EQ(field<QLineEdit>(u"Modelo"_s)->text(), QString());
    choose(Provider::local());
    EXPECT_EQ(field<QLineEdit>(u"Dirección"_s)->text(), server.baseUrl());
    EXPECT_EQ(field<QLineEdit>(u"Modelo"_s)->text(), u"modelo-a"_s);
}

TEST_F(SettingsDialogTest, AKeyBelongsToItsProviderAndARejectedOneIsSaid) {
    // Only this test stores these keys: another test's set-up must not clear them mid-run.
    for (const QString& account : {u"openai"_s, u"gemini"_s})
        Keychain::remove(account);
    ChatCompletionsServer server({});
    preferences->setBaseURL(server.baseUrl(), Provider::openAI());
    preferences->setModel(u"gpt-x"_s, Provider::openAI());
    choose(Provider::openAI());
    EXPECT_TRUE(shows(u"Falta la API key de ChatGPT (OpenAI). Cargala en Ajustes; la sacás de "
                      "platform.openai.com/api-keys."_s));
    type(field<QLineEdit>(u"API key"_s), u"sk-equivocada"_s);
    EXPECT_EQ(Keychain::get(u"openai"_s), u"sk-equivocada"_s);
    EXPECT_EQ(Keychain::get(u"gemini"_s), QString());
    EXPECT_TRUE(shows(u"Listo para traducir"_s));

    QTest::mouseClick(button(u"Probar conexión"_s), Qt::LeftButton);
    EXPECT_TRUE(shows(u"La API key fue rechazada (401): {\"error\":{\"message\":\"Incorrect API "
                      "key provided\"}}"_s));

    choose(Provider::gemini());
    EXPECT_EQ(field<QLineEdit>(u"API key"_s)->text(), QString());
    choose(Provider::openAI());
    QLineEdit* key = field<QLineEdit>(u"API key"_s);
    EXPECT_EQ(key->text(), u"sk-equivocada"_s);
    type(key, QString());
    EXPECT_EQ(Keychain::get(u"openai"_s), QString());
}

TEST_F(SettingsDialogTest, TheClaudeProgramShowsOnlyItsOwnSettings) {
    choose(Provider::claudeCLI());
    type(field<QLineEdit>(u"Ruta de «claude» (opcional)"_s), folder.path() + u"/no-claude"_s);
    EXPECT_EQ(preferences->cliBinaryPath(), folder.path() + u"/no-claude"_s);
    field<QComboBox>(u"Modelo del CLI"_s)->setCurrentIndex(0);
    emit field<QComboBox>(u"Modelo del CLI"_s)->activated(0);
    EXPECT_EQ(preferences->cliModel(), u"opus"_s);
    // A program that is not there is never also ready to translate.
    if (QStandardPaths::findExecutable(u"claude"_s).isEmpty()) {
        ASSERT_TRUE(shows(u"No encuentro el binario"_s));
        EXPECT_FALSE(showing(u"Listo para traducir"_s));
    }
    for (const QString& hidden : {u"API key"_s, u"Dirección"_s, u"Modelo"_s}) {
        for (QWidget* widget : dialog->findChildren<QWidget*>()) {
            if (widget->accessibleName() == hidden) {
                EXPECT_FALSE(widget->isVisibleTo(dialog.get())) << hidden.toStdString();
            }
        }
    }
}
