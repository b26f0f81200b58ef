#include "ui/file_drop.h"

#include <QCollator>
#include <QFileInfo>
#include <QLocale>
#include <QMimeData>
#include <algorithm>

namespace tavrelune::ui::FileDrop {

bool carriesFiles(const QMimeData& data)
{
    if (!data.hasUrls())
        return false;
    const QList<QUrl> all = data.urls();
    return std::any_of(all.begin(), all.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

QList<QUrl> urls(const QMimeData& data)
{
    QList<QUrl> found;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile())
            found << url;
    return sortedByName(std::move(found));
}

QList<QUrl> sortedByName(QList<QUrl> urls)
{
    // The C locale has no collation rules (numbers would sort as text);
    // English ones sort file names as file managers do.
    const QLocale locale = QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale();
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(urls.begin(), urls.end(), [&collator](const QUrl& a, const QUrl& b) {
        return collator.compare(QFileInfo(a.path()).fileName(), QFileInfo(b.path()).fileName()) < 0;
    });
    return urls;
}

}  // namespace tavrelune::ui::FileDrop
