#include "VeltoKit/media/Languages.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

TEST(Languages, NormalizesAndNamesCodesRegionalTagsAndNames) {
    // tag=normalised code=Spanish name
    for (const QString& row : u"EN=eng=inglés|en-US=eng=inglés|pt_BR=por=portugués|"
                              " es-419 =spa=español|fra=fre=francés|fre=fre=francés|iw=heb=hebreo|"
                              "ja=jpn=japonés|nld=dut=neerlandés|Ingles=eng=inglés|"
                              "Castilian=spa=español|JAPANESE=jpn=japonés|yue=yue=cantonés|"
                              "Norwegian Bokmål=nob=noruego bokmål|=und=idioma desconocido|"
                              "Undetermined=und=idioma desconocido|Brazilian=und=Brazilian|"
                              "xx=und=xx|qaa=und=qaa"_s.split(u'|')) {
        const QStringList cells = row.split(u'=');
        EXPECT_EQ(Languages::normalize(cells[0]), cells[1]) << qPrintable(row);
        EXPECT_EQ(Languages::displayName(cells[0]), cells[2]) << qPrintable(row);
    }
    for (const QString& placeholder : {u"und"_s, u"mul"_s, u"qaa"_s})
        EXPECT_FALSE(Languages::isKnown(placeholder)) << qPrintable(placeholder);
}

TEST(Languages, ReadsTheLanguageAndTheMarksOfTitles) {
    // title=language=marks; marks are whole words
    for (const QString& row :
         u"English SDH=eng=sdh|Español (Latinoamérica)=spa=|es-MX=spa=|"
         "Spanish / English=spa=|en-GB=eng=|Português (Brasil)=por=|"
         "Français=fre=|Italiano=ita=|Commentary==|==|"
         "Spanish (Forced)=spa=forced|FORZADOS==forced|Foreign Parts==forced|"
         "foreign-part==forced|Forcedly==|Reinforced==|CC==sdh|"
         "hearing-impaired==sdh|Closed Caption==sdh|Access==|SDHX==|Full=="_s.split(u'|')) {
        const QStringList cells = row.split(u'=');
        EXPECT_EQ(Languages::guessFromTitle(cells[0]).value_or(QString()), cells[1])
            << qPrintable(row);
        EXPECT_EQ((Languages::looksForced(cells[0]) ? u"forced"_s : QString()) +
                      (Languages::looksSDH(cells[0]) ? u"sdh"_s : QString()),
                  cells[2])
            << qPrintable(row);
    }
}
