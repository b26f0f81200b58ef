#include "ui/file_drop.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMimeData>
#include <algorithm>

namespace tavrelune::ui::FileDrop {

namespace {

std::optional<QUrl> fileLocation(const QString& line)
{
    const QString text = line.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    if (text.startsWith(QLatin1String("file:"))) {
        const QUrl url(text);
        return url.isLocalFile() ? std::optional<QUrl>(url) : std::nullopt;
    }
    if (QDir::isAbsolutePath(text))
        return QUrl::fromLocalFile(text);
    return std::nullopt;
}

}  // namespace

bool carriesFiles(const QMimeData& data)
{
    return data.hasUrls() || data.hasText();
}

QList<QUrl> urls(const QMimeData& data)
{
    QList<QUrl> found;
    if (data.hasUrls()) {
        for (const QUrl& url : data.urls())
            if (url.isLocalFile())
                found << url;
    } else if (data.hasText()) {
        for (const QString& line : data.text().split(QLatin1Char('\n')))
            if (const auto url = fileLocation(line))
                found << *url;
    }
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
