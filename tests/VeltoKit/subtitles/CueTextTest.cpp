#include "VeltoKit/subtitles/CueText.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

TEST(CueText, ShowsNoTagsBlocksDrawingsOrPlaceholdersAndSendsNoTextWithoutWords) {
    const QList<std::pair<QString, QString>> shown = {
        {u"{\\p1}m 0 0 l 10 0{\\an8}l 5 5\n{\\p0}Hola"_s, u"Hola"_s},
        {u" ⟪ 2 ⟫Uno\\h \n\n  Dos\r\n"_s, u"Uno\nDos"_s},
    };
    for (const auto& [text, visible] : shown)
        EXPECT_EQ(CueText::visible(text), visible) << text.toStdString();

    const QStringList noWords = {
        u""_s, u" \n\t\u00a0"_s, u"<i></i>"_s, u"⟪1⟫⟪2⟫"_s,
        // A drawing is coordinates after the placeholder of the block that turns drawing on.
        u"⟪1⟫m 0 0 l 100 0 100 100⟪2⟫"_s, u" ⟪1⟫ m 10.5 -3 b 1 2 3 4 5 6⟪2⟫⟪3⟫m 0 0 n 1 1 c "_s};
    for (const QString& text : noWords)
        EXPECT_FALSE(CueText::isTranslatable(text)) << text.toStdString();
    // Words after a drawing, or coordinates without the tag that would draw them, are shown.
    for (const QString& text :
         {u"⟪1⟫m 0 0 l 100 0⟪2⟫Hola"_s, u"m 0 0 l 10 10"_s, u"Mm"_s, u"<i>Sí</i>"_s})
        EXPECT_TRUE(CueText::isTranslatable(text)) << text.toStdString();
}
