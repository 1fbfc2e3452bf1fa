// What the printed texts make of an item that a rule has found: its note, its targets, whose it is.

#include <gmock/gmock.h>

#include "app/scan/JsonText.h"
#include "app/scan/TableText.h"
#include "platform/text/PathBytes.h"

namespace brimvault::tests {

using namespace engine;

namespace {

std::shared_ptr<FFItem> item(const std::string& path, ItemNote note, ItemDetails details) {
    auto made = FFItem::initWithPath(path, 2000);
    made->setSpace({12'288});
    made->setNote(note);
    made->setDetails(std::move(details));
    return made;
}

ItemTargets targets(const std::string& folder, std::vector<std::string> names) {
    return {std::make_shared<const FoundIn>(FoundIn{folder}), std::move(names)};
}

std::vector<app::SectionFindings> found(const ItemArray& items) {
    DataMan model;
    model.setCachesArray(items);
    return {app::findingsOf(model, app::sectionNames.front(), 1, {})};
}

}  // namespace

TEST(ScanFindings, TellWhatARuleKnowsOfAnItem) {
    ItemDetails details;
    details.rule = "vendor.cache";
    details.noteArgument = QStringLiteral("A \"B\"");
    details.needsAdministrator = true;
    details.targets = {targets("/one/", {"z", "y"}), targets("/100%/", {"\xc3\xa9", "\xc3"})};
    const auto used = item("/used", ItemNote::inUse, std::move(details));
    used->setPpbDeletable(true);
    const auto plain = item("/work", ItemNote::work, {});
    EXPECT_EQ(
        app::jsonText(found({plain, used})),
        R"({"version":1,"sections":[{"id":"caches","bytes":4000,"items":[)"
        R"({"rule":"vendor.cache","path":"/used","pathEncoding":"percent",)"
        "\"targets\":[\"/100%25/%C3\",\"/100%25/\xc3\xa9\",\"/one/y\",\"/one/z\"],"
        R"("bytes":2000,"frees":12288,"ticked":true,"admin":true,"note":"in-use","noteArgument":"A \"B\""},)"
        R"({"rule":"caches","path":"/work","bytes":2000,"frees":12288,"ticked":false,"admin":false,"note":"work"})"
        "]}]}\n");
}

TEST(ScanFindings, ShowANoteWithoutWhatControlsATerminal) {
    ItemDetails details;
    details.noteArgument = QStringLiteral("\x1b[2J");
    const auto used = item("/used", ItemNote::inUse, std::move(details));
    EXPECT_EQ(app::tableText(found({used})).toStdString(),
              "Caches: 2 KB\n  [ ]     2 KB  /used  (\xef\xbf\xbd[2J is running and uses it)\n");
}

TEST(ScanFindings, EncodeEachByteThatIsNotPartOfUtf8) {
    // Characters of one to four bytes at the ends of their ranges.
    for (const std::string text : {"", "\x01", "\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf",
                                   "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
        EXPECT_TRUE(platform::isUtf8(text));
        EXPECT_EQ(platform::percentEncoded(text), text);
    }
    // Overlong forms, a surrogate, what is beyond the last character, and what ends too early.
    const std::pair<std::string, std::string> wrong[] = {{"\xc1\xbf", "%C1%BF"},
                                                         {"\xe0\x9f\xbf", "%E0%9F%BF"},
                                                         {"\xed\xa0\x80", "%ED%A0%80"},
                                                         {"\xf4\x90\x80\x80", "%F4%90%80%80"},
                                                         {"\xf0\x8f\xbf\xbf", "%F0%8F%BF%BF"},
                                                         {"a\xe2\x82", "a%E2%82"},
                                                         {"\xe2\x82z%", "%E2%82z%25"}};
    for (const auto& [bytes, encoded] : wrong) {
        EXPECT_FALSE(platform::isUtf8(bytes));
        EXPECT_EQ(platform::percentEncoded(bytes), encoded);
    }
}

}  // namespace brimvault::tests
