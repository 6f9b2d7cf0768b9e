#include "ui/app/ProgramIcon.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>

namespace quorbel {
namespace {

TEST(ProgramIconTest, IsDrawnAtEverySizeWithoutQtsPlugIns) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char name[] = "test";
    char *arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    QCoreApplication::setLibraryPaths({}); // Qt looks for SVG plug-ins on first use
    for (const QIcon &icon : {windowIcon(), trayIcon()})
        for (const QSize &size : icon.availableSizes()) {
            const QImage picture = icon.pixmap(size, 2.0).toImage();
            ASSERT_EQ(picture.size(), 2 * size);
            int drawn = 0;
            for (int y = 0; y < picture.height(); ++y)
                for (int x = 0; x < picture.width(); ++x)
                    drawn += qAlpha(picture.pixel(x, y)) > 200 ? 1 : 0;
            EXPECT_GT(drawn, picture.width() * picture.height() / 10) << size.width();
        }
}

} // namespace
} // namespace quorbel
