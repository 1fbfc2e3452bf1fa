#include "ui/list/IconImage.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QColorSpace>
#include <QDir>
#include <QImageReader>
#include <QtEndian>

#include "support/HostileFiles.h"
#include "trial/SampleHome.h"
#include "trial/SampleIcon.h"
#include "trial/TemporaryFolder.h"
#include "ui/look/IconTheme.h"

using namespace brimvault;
using ui::IconImage;

namespace {

QImage filled(int width, int height, const QColor& colour) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

QByteArray saved(const QImage& image, const char* format) {
    QByteArray contents;
    QBuffer buffer(&contents);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format)) << format;
    return contents;
}

QByteArray png(const QImage& image) { return saved(image, "PNG"); }

QByteArray number32(quint32 value) {
    const quint32 bytes = qToBigEndian(value);
    return {reinterpret_cast<const char*>(&bytes), sizeof bytes};
}

// A file (ico) of one picture.
QByteArray onlyOne(const QByteArray& picture) {
    const quint32 length = qToLittleEndian(static_cast<quint32>(picture.size()));
    return QByteArray("\0\0\1\0\1\0\x40\x40\0\0\1\0\x20\0", 14) +
           QByteArray(reinterpret_cast<const char*>(&length), sizeof length) + QByteArray("\x16\0\0\0", 4) + picture;
}

QByteArray element(const QByteArray& kind, const QByteArray& contents) {
    return kind + number32(static_cast<quint32>(contents.size() + 8)) + contents;
}

// A square with round corners.
QByteArray sample(const trial::SampleIcon::Colour& colour) {
    return QByteArray::fromStdString(trial::SampleIcon::inColour(colour));
}

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
    EXPECT_EQ(sizeOf(png(filled(20, 2000, Qt::red))).height(), 40);
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

TEST_F(IconImages, AreNoneWhereTheContentsAreTooLargeBrokenOrNoIcon) {
    constexpr int most = IconImage::maxSide;
    const QByteArray whole = png(filled(64, 64, Qt::red));
    const QByteArray good = element("ic07", whole);
    const QByteArray broken = element("ic07", whole.left(40));
    const QByteArray photograph = saved(filled(64, 64, Qt::red), "JPG");
    QByteArray packedAsPhotograph = saved(filled(64, 64, Qt::red), "TIFF");
    const QByteArray compression("\3\1\3\0\1\0\0\0", 8);  // the field, up to its value
    ASSERT_GT(packedAsPhotograph.indexOf(compression), 0);
    packedAsPhotograph[packedAsPhotograph.indexOf(compression) + compression.size()] = 7;
    enum Fate { shown, inVain, refused };  // before a decoder sees it
    const struct {
        const char* what;
        QByteArray contents;
        Fate fate;
    } examples[] = {
        {"the longest side", png(filled(most, 1, Qt::red)), shown},
        {"wider", png(filled(most + 1, 1, Qt::red)), refused},
        {"higher", png(filled(1, most + 1, Qt::red)), refused},
        {"higher, among others", element("icns", element("ic07", png(filled(1, most + 1, Qt::red)))), refused},
        {"wider, in a form that does not say so", saved(filled(most + 1, 1, Qt::red), "XPM"), inVain},
        {"the most elements", element("icns", good.repeated(256)), shown},
        {"an element more", element("icns", good.repeated(257)), refused},
        {"the most bytes", whole.leftJustified(ui::IconFile::maxBytes, '\0'), shown},
        {"a byte more", whole.leftJustified(ui::IconFile::maxBytes + 1, '\0'), refused},
        {"the last picture that is tried", element("icns", broken.repeated(3) + good), shown},
        {"a picture more", element("icns", broken.repeated(4) + good), inVain},
        {"nothing", QByteArray(), refused},
        {"text", "a text that is as long as a picture", refused},
        {"a drawing", R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><g/></svg>)", refused},
        {"a photograph", photograph, refused},
        {"a photograph among others", element("icns", element("ic07", photograph)), refused},
        {"a photograph alone", onlyOne(photograph), refused},
        {"a photograph in another form", packedAsPhotograph, refused},
        {"the start of a picture", whole.left(20), refused},
        {"an end beyond the end", QByteArray("icns\xff\xff\xff\xff").repeated(4), refused},
        {"text in the place of a picture", element("icns", element("ic07", "a text and no picture")), refused},
    };
    for (const auto& [what, contents, fate] : examples) {
        EXPECT_EQ(!IconImage::ofContents(contents, 20).isNull(), fate == shown) << what;
        EXPECT_EQ(ui::IconFile::pictures(contents).empty(), fate == refused) << what;
    }
}

TEST_F(IconImages, OfEveryFormKeepTheirColours) {
    const QImage drawn = filled(32, 32, QColor(200, 100, 50));
    for (const char* format : {"PNG", "TIFF", "ICO", "BMP", "XPM"}) {
        const QImage icon = IconImage::ofContents(saved(drawn, format), 32);
        ASSERT_EQ(icon.size(), QSize(32, 32)) << format;
        EXPECT_EQ(icon.pixelColor(16, 16), QColor(200, 100, 50)) << format;
    }
    const QByteArray redPoint("GIF89a\1\0\1\0\x80\0\0\xff\0\0\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);
    EXPECT_EQ(IconImage::ofContents(redPoint, 32).pixelColor(16, 16), QColor(Qt::red));
    QImage indexed(32, 32, QImage::Format_Indexed8);
    indexed.setColorTable({qRgba(255, 0, 0, 255), qRgba(0, 255, 0, 0)});
    indexed.fill(1);
    indexed.setPixel(16, 16, 0);
    for (const auto& contents :
         {png(indexed), onlyOne(png(indexed)), element("icns", element("ic05", png(indexed))), sample({255, 0, 0})}) {
        const QImage icon = IconImage::ofContents(contents, 32);
        ASSERT_EQ(icon.size(), QSize(32, 32));
        EXPECT_EQ(icon.pixelColor(16, 16), QColor(Qt::red));
        EXPECT_EQ(icon.pixelColor(2, 2).alpha(), 0);
    }
}

// Which can be far larger than they are, once it is unpacked.
TEST_F(IconImages, AreDecodedWithoutWhatIsPackedBesideThem) {
    QImage labelled = filled(64, 64, Qt::red);
    labelled.setText(QStringLiteral("note"), QString(1000, QLatin1Char('x')));
    labelled.setColorSpace(QColorSpace::AdobeRgb);
    const QByteArray whole = png(labelled);
    ASSERT_TRUE(whole.contains("zTXt") && whole.contains("iCCP"));
    for (const auto& contents :
         {whole, element("icns", element("ic07", whole)), onlyOne(whole), saved(labelled, "TIFF")}) {
        const QImage icon = IconImage::ofContents(contents, 64);
        EXPECT_EQ(icon.pixelColor(10, 10), QColor(Qt::red)) << "the picture itself is good";
        EXPECT_TRUE(icon.textKeys().isEmpty());
        EXPECT_FALSE(icon.colorSpace().isValid());
    }
}

TEST_F(IconImages, OfTheDesktopAreFilesThatNeedNothingElse) {
    const trial::TemporaryFolder folder;
    const auto icon = [&](const std::string& contents) {
        trial::writeFile(folder / "icon.svg", contents);
        return IconImage::ofDesktopFile(QString::fromStdString(folder / "icon.svg"), 20);
    };
    const auto drawing = [](const QByteArray& inside) {
        return R"(<?xml version="1.0"?><svg xmlns="http://www.w3.org/2000/svg" )" +
               (R"(xmlns:l="http://www.w3.org/1999/xlink" width="9" height="9">)" + inside + "</svg>").toStdString();
    };
    const QByteArray square = R"(<rect id="a" width="9" height="9" fill="red"/>)";
    const QByteArray again = R"(<use l:href="#a"/>)";
    EXPECT_EQ(icon(drawing(square)).pixelColor(10, 10), QColor(Qt::red));
    EXPECT_FALSE(icon(drawing(square + again.repeated(16))).isNull());
    trial::writeFile(folder / "other.png", png(filled(9, 9, Qt::red)).toStdString());
    for (const auto& contents :
         {drawing(square + again.repeated(17)), drawing(R"(<image width="9" height="9" l:href="other.png"/>)"),
          "<!DOCTYPE svg [<!ENTITY a \"b\">]>" + drawing(square), saved(filled(9, 9, Qt::red), "JPG").toStdString(),
          std::string()}) {
        EXPECT_TRUE(icon(contents).isNull()) << contents.substr(0, 300);
    }
    ASSERT_EQ(::mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    EXPECT_TRUE(IconImage::ofDesktopFile(QString::fromStdString(folder / "pipe.png"), 20).isNull());
}

TEST_F(IconImages, SurviveEveryDamage) {
    testing::internal::CaptureStderr();  // the decoders complain
    const QImage drawn = filled(16, 16, Qt::red);
    for (const auto& whole : {sample({255, 0, 0}), png(drawn), saved(drawn, "TIFF"), saved(drawn, "ICO"),
                              onlyOne(png(drawn)), saved(drawn, "BMP"), element("icns", element("ic07", png(drawn)))}) {
        ASSERT_EQ(sizeOf(whole), QSize(40, 40));
        for (qsizetype place = 0; place < whole.size(); place += 1 + place / 100) {
            for (const char letter : {'\0', '\x7f', '\xff'}) {
                QByteArray damaged = whole;
                damaged[place] = letter;
                const QSize size = sizeOf(damaged);
                EXPECT_TRUE(size.isEmpty() || std::max(size.width(), size.height()) == 40) << place;
                EXPECT_LE(sizeOf(whole.left(place)).width(), 40);
            }
        }
    }
    testing::internal::GetCapturedStderr();
}

TEST(IconThemes, HaveTheFileThatServesBest) {
    const trial::TemporaryFolder folder;
    const auto theme = [&](const char* name, const std::string& inherits, const std::string& folders) {
        trial::writeFile(folder / name / "index.theme",
                         "[Icon Theme]\nName=x\nInherits=" + inherits + "\nDirectories=x\n" + folders);
    };
    theme("Mine", "Other,Mine",
          "[16x16/mimetypes]\nSize=16\nContext=MimeTypes\nType=Fixed\n"
          "[32/mime]\nSize=32\nContext=MimeTypes\n[16x16@2/mimetypes]\nSize=16\nScale=2\nContext=MimeTypes\n"
          "[apps]\nSize=20\nContext=Applications\n");
    theme("Other", "Mine", "[any]\nSize=48\nMinSize=8\nMaxSize=512\nType=Scalable\nContext=MimeTypes\n");
    theme("hicolor", "", "[64/mimetypes]\nSize=64\nContext=MimeTypes\n");
    for (const char* file : {"Mine/16x16/mimetypes/zip.png", "Mine/32/mime/zip.png", "Mine/32/mime/zip.svg",
                             "Mine/apps/program.png", "Other/any/text.svg", "Added/Mine/apps/editor.png",
                             "hicolor/64/mimetypes/zip.png", "hicolor/64/mimetypes/last.png"}) {
        trial::writeFile(folder / file, "picture");
    }
    const QString place = QString::fromStdString(folder.path());
    ui::IconTheme icons(QStringLiteral("Mine"), {QStringLiteral("/no such folder"), place});
    const auto found = [&](const char* names, int pixels) {
        const auto file = icons.fileOf(QString::fromLatin1(names).split(QLatin1Char(' ')), pixels);
        return file.isEmpty() ? std::string() : QDir(place).relativeFilePath(file).toStdString();
    };
    EXPECT_EQ(found("zip", 16), "Mine/16x16/mimetypes/zip.png");
    EXPECT_EQ(found("zip", 20), "Mine/32/mime/zip.png");
    EXPECT_EQ(found("zip", 99), "Mine/32/mime/zip.png") << "the theme before the size";
    EXPECT_EQ(found("rar  text", 20), "Other/any/text.svg");
    EXPECT_EQ(found("last zip", 20), "hicolor/64/mimetypes/last.png");
    EXPECT_EQ(found("program ", 20), "") << "no icon of a type";
    ui::IconTheme applications(QStringLiteral("Mine"), {place + QStringLiteral("/Added"), place},
                               ui::IconTheme::Kind::applications);
    EXPECT_TRUE(
        applications.fileOf({QStringLiteral("program")}, 20).endsWith(QStringLiteral("/Mine/apps/program.png")));
    EXPECT_TRUE(
        applications.fileOf({QStringLiteral("editor")}, 20).endsWith(QStringLiteral("/Added/Mine/apps/editor.png")))
        << "where no index is";
    EXPECT_TRUE(applications.fileOf({QStringLiteral("zip")}, 20).isEmpty());
    EXPECT_TRUE(ui::IconTheme(QString(), {place}).fileOf({QStringLiteral("zip")}, 20).isEmpty());
    tests::forEachHostileKind(folder / "Odd/index.theme", [&](const std::string& kind) {
        ui::IconTheme odd(QStringLiteral("Odd"), {place});
        EXPECT_TRUE(odd.fileOf({QStringLiteral("last")}, 20).endsWith(QStringLiteral("mimetypes/last.png"))) << kind;
    });
    tests::forEachHostileKind(folder / "Mine/32/mime/odd.png", [&](const std::string& kind) {
        EXPECT_EQ(found("odd", 20).empty(), kind != "huge file") << kind;
    });
}
