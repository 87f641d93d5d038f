#include "configuration/ConfigurationFile.h"
#include "document/MyDocument.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace
{
// Every setting a configuration carries, changed from the factory values.
void customize(MyDocument& doc)
{
    Channels& c = *doc.getChannel(0);
    c.m_dLengthMS = 500;
    c.m_nUpdateIntervalMS = 5;
    c.m_nParameterNumber = 40;
    c.m_bDoInterpolate = 1;
    c.m_bDoAnchor = 1;
    doc._bShowGridData = 0;
    doc.m_bgColor[3] = Color::rgb(0.5, 0.25, 0.125);
    doc.m_ColorTracing[9] = Color::rgb(1, 0, 0, 0.5);
    c.m_Parameters[Row::f1].nMaxValue = 1200;
    c.m_Parameters[Row::f1].nDefaultValue = 450;
    c.m_Parameters[Row::f6].bSelected = 1;
    c.m_Parameters[Row::gain].mColor = RGBColor16{1, 2, 3};
    c.m_Parameters[Row::av].nsSetColor = Color::rgb(0, 1, 0);
    doc.m_nSpecDynamicRange = 70;
    doc.m_dPreEmphasis = 0.5;
}

// A configuration folder of the test's own; the hooks go with it.
struct TemporaryConfigHome : TempDir {
    TemporaryConfigHome() { setenv("XDG_CONFIG_HOME", path.c_str(), 1); }
    ~TemporaryConfigHome()
    {
        MyDocument::setConfigurationLoader({});
        MyDocument::setConfigurationWriter({});
    }
};
} // namespace

TEST(ConfigurationFile, RoundTripReplacesExactlyTheNewDocumentSettings)
{
    MyDocument source;
    customize(source);
    const std::string bytes = ConfigurationFile::encode(source);
    EXPECT_EQ(ConfigurationFile::versionText().rfind("Tessaphon ", 0), 0u);
    ASSERT_EQ(std::string(bytes.c_str()), ConfigurationFile::versionText())
        << "the file starts with the version";
    // The grid switch, an int32 at byte 284: off, and on in a second image.
    EXPECT_EQ(bytes.substr(284, 4), std::string(4, '\0'));
    source._bShowGridData = 1;
    EXPECT_EQ(ConfigurationFile::encode(source).substr(284, 4), std::string("\1\0\0\0", 4));
    source._bShowGridData = 0;

    // A new document takes every setting but the analysis ones, in channels 0 to 2 and not 3.
    MyDocument doc;
    ASSERT_TRUE(ConfigurationFile::decode(bytes, doc, ConfigurationFile::Scope::NewDocument));
    EXPECT_EQ(doc.m_nSpecDynamicRange, 50);
    EXPECT_DOUBLE_EQ(doc.m_dPreEmphasis, 0.98);
    EXPECT_DOUBLE_EQ(doc.getChannel(3)->m_dLengthMS, 200.0);
    EXPECT_EQ(doc.getChannel(3)->m_Parameters[Row::f1].nMaxValue, 1300);
    doc.m_nSpecDynamicRange = 70;
    doc.m_dPreEmphasis = 0.5;
    EXPECT_EQ(ConfigurationFile::encode(doc), bytes);
    for (int ch = 1; ch <= 2; ++ch) {
        const Channels& c = *doc.getChannel(ch);
        EXPECT_DOUBLE_EQ(c.m_dLengthMS, 500.0);
        EXPECT_EQ(c.m_nUpdateIntervalMS, 5);
        EXPECT_EQ(c.m_nColumnNum, 100);
        EXPECT_EQ(c.m_Parameters[Row::f1].nMaxValue, 1200);
        EXPECT_EQ(c.m_Parameters[Row::av].nsSetColor, Color::rgb(0, 1, 0));
        EXPECT_FALSE(c.m_Parameters[Row::gain].nsSetColor.isSet) << "an unset colour stays unset";
        EXPECT_STREQ(c.m_Parameters[Row::f1].strName, "f1");
    }

    // A configuration the user loads brings the analysis settings along.
    MyDocument loaded;
    ASSERT_TRUE(ConfigurationFile::decode(bytes, loaded, ConfigurationFile::Scope::Everything));
    EXPECT_EQ(loaded.m_nSpecDynamicRange, 70);
    EXPECT_EQ(ConfigurationFile::encode(loaded), bytes);
}

TEST(ConfigurationFile, DamagedShortForeignOrImpossibleFilesChangeNothing)
{
    MyDocument source;
    customize(source);
    const std::string good = ConfigurationFile::encode(source);
    MyDocument doc;
    const std::string factory = ConfigurationFile::encode(doc);
    auto refused = [&](const std::string& bytes) {
        const bool taken = ConfigurationFile::decode(bytes, doc, ConfigurationFile::Scope::Everything);
        return !taken && ConfigurationFile::encode(doc) == factory;
    };

    EXPECT_TRUE(refused(""));
    EXPECT_TRUE(refused("RIFF\x24\0\0\0WAVEfmt "));
    EXPECT_TRUE(refused(std::string(4000, '\0')));
    for (std::size_t cut :
         {std::size_t{10}, std::size_t{283}, std::size_t{300}, good.size() / 2, good.size() - 1})
        EXPECT_TRUE(refused(good.substr(0, cut))) << "cut at " << cut;
    EXPECT_TRUE(refused(good + "x"));
    for (std::size_t at :
         {std::size_t{0}, std::size_t{260}, std::size_t{284}, std::size_t{700}, good.size() - 20}) {
        std::string flipped = good;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x40);
        EXPECT_TRUE(refused(flipped)) << "byte " << at;
    }
    // A well-formed file with a value no document can hold (an hour-long limit on length).
    MyDocument huge;
    huge.getChannel(0)->m_dLengthMS = 1e12;
    EXPECT_TRUE(refused(ConfigurationFile::encode(huge)));

    // A file whose checksum is right but whose last setting no document can hold (a flag of 2) is
    // refused before any setting reaches the document, the analysis settings included.
    source.m_bPitchDrawTimeGrid = 1;
    std::string bytes = ConfigurationFile::encode(source);
    // The last analysis field (an int32) comes just before the checksum, the flag before it.
    const std::size_t flagAt = bytes.size() - 4 - 4 - 4;
    ASSERT_EQ(bytes[flagAt], 1);
    bytes[flagAt] = 2;
    std::uint32_t hash = 2166136261u; // FNV-1a over all but the checksum itself
    for (std::size_t i = 0; i + 4 < bytes.size(); ++i)
        hash = (hash ^ static_cast<unsigned char>(bytes[i])) * 16777619u;
    for (int i = 0; i < 4; ++i)
        bytes[bytes.size() - 4 + i] = static_cast<char>((hash >> (8 * i)) & 0xff);
    EXPECT_TRUE(refused(bytes));

    // An interval of 0 in the file becomes 10.
    MyDocument zero;
    zero.getChannel(0)->m_nUpdateIntervalMS = 0;
    ASSERT_TRUE(ConfigurationFile::decode(ConfigurationFile::encode(zero), doc,
                                          ConfigurationFile::Scope::NewDocument));
    EXPECT_EQ(doc.getChannel(1)->m_nUpdateIntervalMS, 10);
    EXPECT_EQ(doc.getChannel(1)->m_nColumnNum, 20);
}

TEST(ConfigurationFile, HooksWriteWhenMissingAndFeedNewDocuments)
{
    TemporaryConfigHome home;
    const std::string path = ConfigurationFile::defaultPath();
    EXPECT_EQ(path, home / "Tessaphon/TessaphonConf.cfg");
    ConfigurationFile::install();

    MyDocument first; // no file yet: one is written with the factory values
    EXPECT_EQ(slurp(path), ConfigurationFile::encode(first));

    customize(first);
    first.saveConfig();
    MyDocument second;
    EXPECT_DOUBLE_EQ(second.getChannel(0)->m_dLengthMS, 500.0);

    // A damaged file is ignored (factory values) and left as it is.
    std::ofstream(path, std::ios::binary | std::ios::trunc) << "garbage";
    MyDocument third;
    EXPECT_DOUBLE_EQ(third.getChannel(0)->m_dLengthMS, 200.0);
    EXPECT_EQ(slurp(path), "garbage");

    // Named configurations: write where asked, refuse an unwritable place with a reason.
    const std::string named = home / "named/config.cfg";
    ASSERT_TRUE(ConfigurationFile::write(named, first));
    MyDocument fourth;
    ASSERT_TRUE(ConfigurationFile::read(named, fourth, ConfigurationFile::Scope::Everything));
    EXPECT_EQ(fourth.m_nSpecDynamicRange, 70);
    std::string error;
    EXPECT_FALSE(ConfigurationFile::write("/proc/tessaphon/config.cfg", first, &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(ConfigurationFile::read(home / "missing.cfg", fourth, ConfigurationFile::Scope::Everything));
}
