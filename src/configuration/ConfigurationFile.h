#pragma once
// The configuration file: a binary image of a document's settings that every new document
// takes after its factory values. The application's own one is
// $XDG_CONFIG_HOME/Tessaphon/TessaphonConf.cfg (~/.config when XDG_CONFIG_HOME is unset);
// named configurations (config.cfg by default) are saved and loaded from the File menu.
//
// Layout (little-endian; offsets in bytes):
//     0  the application's version text, NUL-padded to 256 bytes ("Tessaphon 0.1.0")
//   256  magic "TSCF", 260 layout version (1), 264 total byte count
//   268  utterance: length (double, ms), interval (int32, ms), parameter row count (int32)
//   284  _bShowGridData (int32), then m_bDoInterpolate, m_bDoAnchor (int32 each)
//   296  ten background colours, then ten trace colours (r, g, b, a doubles + set flag)
//        the 48 parameter records (default, value, min, max, shown, colour triple, colour)
//        the analysis settings, in the order of MyDocument's declarations
//   end  FNV-1a checksum (uint32) of everything before it
// A short, damaged or foreign file is refused as a whole: nothing of the document changes.
// Standard library only; main thread (it reads and writes the document).
#include <string>

class MyDocument;

class ConfigurationFile
{
public:
    // What a read replaces. NewDocument: the settings a new document takes from the file
    // (show-grid flag, the interpolate and anchor switches, the first ten background and
    // trace colours, and on channels 0..2 the row count, length, interval, frame count and
    // the 48 parameter records). Everything: all that, plus the analysis settings (a
    // configuration the user loads by name).
    enum class Scope { NewDocument, Everything };

    static std::string versionText();
    // $XDG_CONFIG_HOME/Tessaphon/TessaphonConf.cfg, or ~/.config/... when it is unset.
    static std::string defaultPath();

    static std::string encode(const MyDocument& doc);
    // Applies the image to the document; false (document untouched) when the bytes are not
    // a whole, undamaged configuration of this layout.
    static bool decode(const std::string& bytes, MyDocument& doc, Scope scope);

    // Reads a file; false when it is missing, unreadable or refused by decode.
    static bool read(const std::string& path, MyDocument& doc, Scope scope);
    // Writes atomically (temporary file beside it, then rename), making the folder when
    // needed; on failure `error` (when given) says why and the old file is untouched.
    static bool write(const std::string& path, const MyDocument& doc, std::string* error = nullptr);

    // Changes only the show-grid flag of an existing configuration file of this version: the
    // file is decoded, the flag set, and the whole image encoded again (checksum included) and
    // written atomically. False, with the file untouched, when it is missing, of another
    // version, damaged, or cannot be replaced.
    static bool writeShowGridData(const std::string& path, bool show);

    // Installs the document hooks: each new document reads the default file (and writes one
    // with its values when there is none); saveConfig() writes the default file.
    static void install();
};
