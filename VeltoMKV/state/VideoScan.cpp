#include "VeltoMKV/state/VideoScan.h"

#include <algorithm>

#include <QDirIterator>
#include <QFileInfo>

#include "VeltoKit/job/JobPlan.h"

namespace velto::VideoScan {
namespace {

// The run of digits (or of other characters) that starts at `from`.
QStringView chunk(const QString& text, qsizetype from) {
    const bool digits = text.at(from).isDigit();
    qsizetype end = from;
    while (end < text.size() && text.at(end).isDigit() == digits)
        ++end;
    return QStringView(text).mid(from, end - from);
}

// Two runs of digits by value: leading zeros do not count, a longer number is larger.
int compareNumbers(QStringView a, QStringView b) {
    while (a.size() > 1 && a.front() == u'0')
        a = a.mid(1);
    while (b.size() > 1 && b.front() == u'0')
        b = b.mid(1);
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

int compareNatural(const QString& a, const QString& b) {
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        const QStringView left = chunk(a, i);
        const QStringView right = chunk(b, j);
        const bool numbers = left.front().isDigit() && right.front().isDigit();
        const int order =
            numbers ? compareNumbers(left, right) : left.compare(right, Qt::CaseInsensitive);
        if (order != 0)
            return order;
        i += left.size();
        j += right.size();
    }
    if (i < a.size() || j < b.size())
        return i < a.size() ? 1 : -1;
    // Equal but for case or zeros: a fixed order still, so sorting is stable across runs.
    return a.compare(b);
}

QStringList videosUnder(const QString& folder) {
    QStringList found;
    QDirIterator entries(folder, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        if (isVideo(path))
            found.append(path);
    }
    // The copies made earlier from videos of the same folder are results, not work to do.
    QStringList made;
    for (const QString& video : found)
        made << QFileInfo(JobPlan::defaultOutputURL(video)).absoluteFilePath();
    found.removeIf([&](const QString& path) { return made.contains(path); });
    std::sort(found.begin(), found.end(), naturalLess);
    return found;
}

} // namespace

bool naturalLess(const QString& a, const QString& b) {
    return compareNatural(a, b) < 0;
}

bool isVideo(const QString& path) {
    static const QStringList extensions = {QStringLiteral("mkv"),  QStringLiteral("mp4"),
                                           QStringLiteral("mov"),  QStringLiteral("m4v"),
                                           QStringLiteral("webm"), QStringLiteral("avi")};
    return extensions.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

QStringList videos(const QStringList& paths) {
    QStringList found;
    for (const QString& path : paths) {
        const QFileInfo info(path);
        const QStringList more = info.isDir() ? videosUnder(info.absoluteFilePath())
                                              : QStringList{info.absoluteFilePath()};
        for (const QString& video : more) {
            if (!found.contains(video))
                found.append(video);
        }
    }
    // An open dialog hands over "E10" before "E2"; a season runs in its own order.
    std::stable_sort(found.begin(), found.end(), naturalLess);
    return found;
}

} // namespace velto::VideoScan
