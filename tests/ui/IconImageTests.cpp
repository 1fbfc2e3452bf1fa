#include "ui/IconImage.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QImageReader>
#include <QPainter>

#include "support/HostileFiles.h"
#include "support/SampleHome.h"
#include "support/SampleIcon.h"
#include "support/TemporaryFolder.h"
#include "ui/IconTheme.h"

using namespace brimvault;
using ui::IconImage;

namespace {

QImage filled(int width, int height, const QColor& colour) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

QByteArray png(const QImage& image) {
    QByteArray contents;
    QBuffer buffer(&contents);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return contents;
}

QByteArray element(const QByteArray& kind, const QByteArray& contents) {
    const auto length = static_cast<quint32>(contents.size() + 8);
    QByteArray bytes = kind;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes.append(static_cast<char>(length >> shift & 0xFFU));
    }
    return bytes + contents;
}

QByteArray sample() { return QByteArray::fromStdString(tests::SampleIcon::inColour({0x5B, 0x8D, 0xEF})); }

QSize sizeOf(const QByteArray& contents) { return IconImage::ofContents(contents, 40).size(); }

class IconImages : public testing::Test {
protected:
    void SetUp() override {
        IconImage::limitMemory();
        before_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    }
    void TearDown() override { qInstallMessageHandler(before_); }

private:
    QtMessageHandler before_ = nullptr;  ///< what is broken is told at length
};

}  // namespace

TEST_F(IconImages, FitTheirPlaceWithTheirShapeKept) {
    EXPECT_EQ(sizeOf(png(filled(128, 128, Qt::red))), QSize(40, 40));
    EXPECT_EQ(sizeOf(png(filled(16, 8, Qt::red))), QSize(40, 20));
    EXPECT_EQ(sizeOf(png(filled(30, 3000, Qt::red))).height(), 40);
}

TEST_F(IconImages, OfSeveralSizesTheSmallestThatIsLargeEnoughServes) {
    ASSERT_TRUE(QImageReader::supportedImageFormats().contains("icns")) << "Qt's image formats are missing";
    const QByteArray file = element(
        "icns", element("ic10", png(filled(1024, 1024, Qt::red))) + element("icp4", png(filled(16, 16, Qt::blue))) +
                    element("ic07", png(filled(128, 128, Qt::green))) + element("ic08", "broken"));
    EXPECT_EQ(IconImage::ofContents(file, 40).pixelColor(20, 20), QColor(Qt::green));
    EXPECT_EQ(IconImage::ofContents(file, 16).pixelColor(8, 8), QColor(Qt::blue));
    EXPECT_EQ(IconImage::ofContents(file, 200).pixelColor(100, 100), QColor(Qt::red)) << "the broken one is passed";
}

TEST_F(IconImages, OfTheSampleHomeAreSquaresWithRoundCorners) {
    const QImage icon = IconImage::ofContents(sample(), 20);
    ASSERT_EQ(icon.size(), QSize(20, 20));
    EXPECT_EQ(icon.pixelColor(10, 10), QColor(0x5B, 0x8D, 0xEF));
    EXPECT_GT(icon.pixelColor(1, 10).alpha(), 200);
    EXPECT_LT(icon.pixelColor(0, 10).alpha(), 50);
    EXPECT_LT(icon.pixelColor(1, 1).alpha(), 64);
}

TEST_F(IconImages, AreNoneWhereTheContentsAreBrokenTooLargeOrNoIcon) {
    const QByteArray whole = png(filled(64, 64, Qt::red));
    const QByteArray drawing = R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><g/></svg>)";
    const QByteArray small = element("ic07", png(filled(4, 4, Qt::red)));
    EXPECT_FALSE(IconImage::ofContents(element("icns", small.repeated(200)), 20).isNull());
    for (const auto& contents :
         {element("icns", small.repeated(100'000)), QByteArray(), QByteArray("text"), whole.left(20), drawing,
          QByteArray("icns\xff\xff\xff\xff"), element("icns", element("ic07", "no picture")),
          png(filled(IconImage::largestSide + 1, 1, Qt::red)), png(filled(1, IconImage::largestSide + 1, Qt::red)),
          element("icns", element("ic07", png(filled(5000, 5000, Qt::red))))}) {
        EXPECT_TRUE(IconImage::ofContents(contents, 20).isNull()) << contents.left(40).toStdString();
    }
}

TEST_F(IconImages, SurviveEveryDamage) {
    for (qsizetype place = 0; place < sample().size(); place += 1 + place / 100) {
        for (const char letter : {'\0', '\x7f', '\xff'}) {
            QByteArray damaged = sample();
            damaged[place] = letter;
            const QSize size = sizeOf(damaged);
            EXPECT_TRUE(size.isEmpty() || size == QSize(40, 40)) << place;
        }
    }
}

TEST(IconThemes, HaveTheFileThatServesBest) {
    const tests::TemporaryFolder folder;
    const auto theme = [&](const char* name, const std::string& inherits, const std::string& folders) {
        tests::writeFile(folder / name / "index.theme",
                         "[Icon Theme]\nName=x\nInherits=" + inherits + "\nDirectories=x\n" + folders);
    };
    theme("Mine", "Other,Mine",
          "[16x16/mimetypes]\nSize=16\nContext=MimeTypes\nType=Fixed\n"
          "[32/mime]\nSize=32\nContext=MimeTypes\n[16x16@2/mimetypes]\nSize=16\nScale=2\nContext=MimeTypes\n"
          "[apps]\nSize=20\nContext=Applications\n");
    theme("Other", "Mine", "[any]\nSize=48\nMinSize=8\nMaxSize=512\nType=Scalable\nContext=MimeTypes\n");
    theme("hicolor", "", "[64/mimetypes]\nSize=64\nContext=MimeTypes\n");
    for (const char* file :
         {"Mine/16x16/mimetypes/zip.png", "Mine/32/mime/zip.png", "Mine/32/mime/zip.svg", "Mine/apps/program.png",
          "Other/any/text.svg", "hicolor/64/mimetypes/zip.png", "hicolor/64/mimetypes/last.png"}) {
        tests::writeFile(folder / file, "picture");
    }
    const QString place = QString::fromStdString(folder.path());
    ui::IconTheme icons(QStringLiteral("Mine"), {QStringLiteral("/no such folder"), place});
    const auto found = [&](const QStringList& names, int pixels) {
        return QDir(place).relativeFilePath(icons.fileOf(names, pixels)).toStdString();
    };
    EXPECT_EQ(found({QStringLiteral("zip")}, 16), "Mine/16x16/mimetypes/zip.png");
    EXPECT_EQ(found({QStringLiteral("zip")}, 20), "Mine/32/mime/zip.png");
    EXPECT_EQ(found({QStringLiteral("zip")}, 99), "Mine/32/mime/zip.png") << "the theme before the size";
    EXPECT_EQ(found({QStringLiteral("rar"), QString(), QStringLiteral("text")}, 20), "Other/any/text.svg");
    EXPECT_EQ(found({QStringLiteral("last"), QStringLiteral("zip")}, 20), "hicolor/64/mimetypes/last.png");
    EXPECT_TRUE(icons.fileOf({QStringLiteral("program"), QStringLiteral("")}, 20).isEmpty()) << "no icon of a type";
    EXPECT_TRUE(ui::IconTheme(QString(), {place}).fileOf({QStringLiteral("zip")}, 20).isEmpty());
    tests::forEachHostileKind(folder / "Odd/index.theme", [&](const std::string& kind) {
        ui::IconTheme odd(QStringLiteral("Odd"), {place});
        EXPECT_TRUE(odd.fileOf({QStringLiteral("last")}, 20).endsWith(QStringLiteral("mimetypes/last.png"))) << kind;
    });
    tests::forEachHostileKind(folder / "Mine/32/mime/odd.png", [&](const std::string& kind) {
        EXPECT_EQ(icons.fileOf({QStringLiteral("odd")}, 20).isEmpty(), kind != "huge file") << kind;
    });
}
