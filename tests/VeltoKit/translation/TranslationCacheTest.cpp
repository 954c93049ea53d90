#include "VeltoKit/translation/TranslationCache.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/MediaFixtures.h"
#include "support/QStringPrinter.h"

using namespace velto;
using namespace Qt::StringLiterals;
using MediaFixtures::readFile;
using MediaFixtures::writeFile;

TEST(TranslationCache, StartsEmptyFromUnreadableFilesAndWritesPutsUntilAWriteSucceeds) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"video.json"_s);
    TranslationCache(path, u"s"_s).flush();
    EXPECT_FALSE(QFile::exists(path));
    for (const QByteArray& bad : {"no es JSON"_ba, "[\"a\"]"_ba, "{\"a\": \"b\", \"c\": 1}"_ba}) {
        writeFile(path, bad);
        TranslationCache cache(path, u"s"_s);
        EXPECT_EQ(cache.count(), 0) << bad.constData();
        cache.flush();
        EXPECT_EQ(readFile(path), bad);
    }
    // A folder under the file's name makes the write fail; the next flush tries again.
    ASSERT_TRUE(QFile::remove(path) && QDir(dir.path()).mkdir(u"video.json"_s));
    TranslationCache cache(path, u"s"_s);
    cache.put(u"k"_s, u"v"_s);
    cache.flush();
    ASSERT_TRUE(QDir(dir.path()).rmdir(u"video.json"_s));
    cache.flush();
    EXPECT_EQ(TranslationCache(path, u"s"_s).get(u"k"_s), u"v"_s);
}

TEST(TranslationCache, KeepsOnlyThisRunsEntriesAndReadsBackWhatItWrote) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"video.json"_s);
    // What an earlier run of the program left: valid, but its keys can never match again.
    writeFile(path, R"({"5-77":"viejo"})"_ba);
    TranslationCache cache(path, u"s"_s);
    EXPECT_EQ(cache.count(), 0);
    const QString nasty = u"\"¡Corré!\" \\ ⟪1⟫\n\t\u0001 😀"_s;
    cache.put(cache.key(u"Run!"_s), nasty);
    // Another engine or variant never reads this translation.
    EXPECT_NE(cache.key(u"Run!"_s), TranslationCache(path, u"t"_s).key(u"Run!"_s));
    cache.flush();
    const TranslationCache reopened(path, u"s"_s);
    EXPECT_EQ(reopened.count(), 1);
    EXPECT_EQ(reopened.get(cache.key(u"Run!"_s)), nasty);
}
