#include <gtest/gtest.h>

#include <string>

#include "core/format.h"
#include "macros/messages.h"
#include "macros/settings.h"
#include "store_test_util.h"
#include "xml/xml_error.h"

namespace qm::macros::testing {
namespace {

// Every element and attribute of the settings, in the form the writer gives them.
const std::u16string kFullSettings = std::u16string(kDecl) +
    u"<Quillmark pinTo=\"folder\" pinToLocation=\"C:\\Pins &amp; more\" lastUpdateCheck=\"2016-03-05T14:07:09.042Z\" "
    u"language=\"de-DE\">\r\n"
    u"  <CustomStyle name=\"Note\" lang=\"en-US\">\r\n"
    u"    <Formatting highlightColor=\"#FFFF00\" bold=\"true\" italic=\"false\" underline=\"true\" "
    u"strikethrough=\"false\" supersub=\"super\" />\r\n"
    u"    <Font name=\"Calibri\" color=\"#000000\" size=\"11\" />\r\n"
    u"    <Paragraph indent=\"36\" alignment=\"left\" />\r\n"
    u"    <Spacing spaceBefore=\"1\" spaceAfter=\"2\" spaceBetween=\"3\" />\r\n"
    u"    <List listSpacing=\"4\" listAlignment=\"right\" />\r\n"
    u"    <Bullet bullet=\"2\" fontSize=\"9\" fontColor=\"#FF0000\" />\r\n"
    u"    <Number numberSequence=\"0\" numberFormat=\"##.\" font=\"Arial\" fontSize=\"10\" fontColor=\"#00FF00\" "
    u"bold=\"true\" italic=\"true\" language=\"1033\" />\r\n"
    u"  </CustomStyle>\r\n"
    u"  <CustomStyle name=\"Plain\">\r\n"
    u"    <Font size=\"14\" />\r\n"
    u"  </CustomStyle>\r\n"
    u"</Quillmark>";

TEST(Settings, EveryFieldReadsAndWritesBackUnchanged) {
    QMK::Quillmark settings;
    ReadSettings(kFullSettings, settings);
    EXPECT_EQ(settings.pinToLocation.value, u"C:\\Pins & more");
    EXPECT_EQ(settings.lastUpdateCheck.value.wMilliseconds, 42);
    ASSERT_EQ(settings.styles.size(), 2u);
    EXPECT_EQ(settings.styles[0]->number->numberFormat.value, u"##.");
    EXPECT_EQ(settings.styles[1]->formatting, nullptr);
    EXPECT_EQ(WriteSettings(settings), kFullSettings);
}

TEST(SettingsStore, MissingFileGivesDefaultsAndOnlySetValuesAreSaved) {
    const fs::path folder = ScratchFolder();
    SettingsStore store(folder);
    EXPECT_EQ(store.Get().pinTo.value, u"favorites");
    EXPECT_EQ(WriteSettings(store.Get()), std::u16string(kDecl) + u"<Quillmark />");
    EXPECT_FALSE(fs::exists(folder));

    store.Get().language = u"fr-FR";
    store.Save();
    const std::u16string expected = std::u16string(kDecl) + u"<Quillmark language=\"fr-FR\" />";
    EXPECT_EQ(Bytes(folder / "quillmark.xml"), io::EncodeUtf16Le(expected));
    EXPECT_EQ(SettingsStore(folder).Get().language.value, u"fr-FR");
}

TEST(SettingsStore, UnreadableFileIsReportedAndNotWrittenOver) {
    const fs::path folder = ScratchFolder();
    const fs::path file = folder / "quillmark.xml";
    const std::u16string broken = std::u16string(kDecl) + u"<Quillmark>\r\n  <CustomStyle name=\"a\">\r\n</Quillmark>";
    WriteUtf16(file, broken);
    std::u16string readError = u"Cannot read \"" + PathText(file) + u"\": ";
    try {
        QMK::Quillmark ignored;
        ReadSettings(broken, ignored);
    } catch (const xml::XmlError& e) {
        EXPECT_EQ(e.line(), 4);
        readError += e.FullText();
    }

    SettingsStore store(folder);
    EXPECT_EQ(StoreErrorOf([&] { store.Get(); }), readError);
    EXPECT_EQ(StoreErrorOf([&] { store.Save(); }), FormatMessage(msg::kKeptUnreadable, {PathText(file), readError}));
    EXPECT_EQ(Bytes(file), io::EncodeUtf16Le(broken));
}

}  // namespace
}  // namespace qm::macros::testing
