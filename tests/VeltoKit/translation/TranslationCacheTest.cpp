#include "VeltoKit/translation/TranslationCache.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/QStringPrinter.h"

using namespace velto;

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(TranslationCache, KeysStartWithTheLengthAndDependOnTheScope) {
    const TranslationCache neutral(QString(), QStringLiteral("Prueba|neutro"));
    const TranslationCache spain(QString(), QStringLiteral("Prueba|espana"));
    const QString text = QStringLiteral("Hello there!");
    EXPECT_TRUE(neutral.key(text).startsWith(u"12-"));
    EXPECT_EQ(neutral.key(text), neutral.key(text));
    EXPECT_NE(neutral.key(text), spain.key(text));
    EXPECT_NE(neutral.key(text), neutral.key(QStringLiteral("Hello there?")));
    bool isNumber = false;
    neutral.key(text).sliced(3).toLongLong(&isNumber);
    EXPECT_TRUE(isNumber);
}

TEST(TranslationCache, FlushedEntriesAreFoundAgainInThisProcess) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("video.json"));
    TranslationCache cache(path, QStringLiteral("guion|neutro"));
    EXPECT_EQ(cache.count(), 0);
    const QString key = cache.key(QStringLiteral("Hi"));
    cache.put(key, QStringLiteral("Hola"));
    cache.put(key, QStringLiteral("Buenas"));
    EXPECT_EQ(cache.get(key), QStringLiteral("Buenas"));
    EXPECT_EQ(cache.get(cache.key(QStringLiteral("Bye"))), std::nullopt);
    cache.flush();

    const TranslationCache reopened(path, QStringLiteral("guion|neutro"));
    EXPECT_EQ(reopened.count(), 1);
    EXPECT_EQ(reopened.get(key), QStringLiteral("Buenas"));
    EXPECT_EQ(readAll(path), QByteArray("{\"") + key.toUtf8() + "\":\"Buenas\"}");
}

TEST(TranslationCache, UnreadableFilesStartEmptyAndFlushWritesOnlyChanges) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("video.json"));
    TranslationCache missing(path, QStringLiteral("s"));
    missing.flush();
    EXPECT_FALSE(QFile::exists(path));

    for (const QByteArray& bad : {QByteArray("no es JSON"), QByteArray("[\"a\"]"),
                                  QByteArray("{\"a\": \"b\", \"c\": 1}")}) {
        writeAll(path, bad);
        TranslationCache cache(path, QStringLiteral("s"));
        EXPECT_EQ(cache.count(), 0) << bad.constData();
        cache.flush();
        EXPECT_EQ(readAll(path), bad);
    }
    TranslationCache corrupt(path, QStringLiteral("s"));
    corrupt.put(QStringLiteral("k"), QStringLiteral("v"));
    corrupt.flush();
    EXPECT_EQ(readAll(path), QByteArray("{\"k\":\"v\"}"));
}

TEST(TranslationCache, AFailedWriteIsRetriedByTheNextFlush) {
    QTemporaryDir dir;
    const QString blocker = dir.filePath(QStringLiteral("cache"));
    writeAll(blocker, "un archivo donde debería haber una carpeta");
    const QString path = blocker + QStringLiteral("/video.json");
    TranslationCache cache(path, QStringLiteral("s"));
    cache.put(QStringLiteral("k"), QStringLiteral("v"));
    cache.flush();
    EXPECT_FALSE(QFile::exists(path));

    ASSERT_TRUE(QFile::remove(blocker));
    cache.flush();
    EXPECT_EQ(readAll(path), QByteArray("{\"k\":\"v\"}"));
}

TEST(TranslationCache, ClearAllRemovesOnlyFilesEndingInLowerCaseJson) {
    QTemporaryDir dir;
    for (const char* name : {"a.json", "b.JSON", "notes.txt", "c.json.bak"})
        writeAll(dir.filePath(QString::fromUtf8(name)), "{}");
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("sub.json")));
    TranslationCache::clearAll(dir.path());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{QStringLiteral("b.JSON"), QStringLiteral("c.json.bak"),
                           QStringLiteral("notes.txt"), QStringLiteral("sub.json")}));
    TranslationCache::clearAll(dir.filePath(QStringLiteral("no-existe")));
}
