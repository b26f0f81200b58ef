// Dropped data to file locations, in file-manager order.
#include "ui/file_drop.h"

#include <QMimeData>
#include <gtest/gtest.h>

using namespace tavrelune::ui;

namespace {

QStringList names(const QList<QUrl>& urls)
{
    QStringList result;
    for (const QUrl& url : urls)
        result << url.fileName();
    return result;
}

}  // namespace

TEST(FileDrop, KeepsOnlyFilesSortedByNameAsAFileManagerDoes)
{
    QMimeData uris;
    uris.setUrls({QUrl::fromLocalFile("/b/clip10.mov"), QUrl("https://example.com/clip0.mov"),
                  QUrl::fromLocalFile("/a/clip2.mov"), QUrl::fromLocalFile("/c/Clip1.mov"),
                  QUrl::fromLocalFile("/d/clip1.mov")});
    EXPECT_EQ(names(FileDrop::urls(uris)), (QStringList{"Clip1.mov", "clip1.mov", "clip2.mov", "clip10.mov"}))
        << "case-insensitive, numbers by value, equal names in the order dropped";

    EXPECT_TRUE(FileDrop::carriesFiles(uris));

    // Text is not a file, even a path: a dragged selection of text is refused.
    QMimeData text;
    text.setText("/media/take 2.mov\nfile:///media/take%2010.mov");
    EXPECT_FALSE(FileDrop::carriesFiles(text));
    EXPECT_TRUE(FileDrop::urls(text).isEmpty());

    QMimeData web;
    web.setUrls({QUrl("https://example.com/a.mov")});
    EXPECT_FALSE(FileDrop::carriesFiles(web));
    EXPECT_TRUE(FileDrop::urls(web).isEmpty());
}
