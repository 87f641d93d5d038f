#include "interchange/Interchange.h"

#include "document/MyDocument.h"
#include "interchange/DocumentImport.h"
#include "interchange/InterchangeText.h"
#include "interchange/KlpFormat.h"
#include "interchange/TsvFormat.h"
#include "labels/TextDecoding.h"

#include <cctype>
#include <filesystem>

namespace
{
std::string plural(std::int64_t count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}
} // namespace

bool interchangeFormatNamed(std::string_view name, InterchangeFormat& format)
{
    const std::string n = lowered(name);
    if (n == "klp")
        format = InterchangeFormat::Klp;
    else if (n == "tsv")
        format = InterchangeFormat::Tsv;
    else
        return false;
    return true;
}

InterchangeFormat interchangeFormatOf(const std::string& path, std::string_view text)
{
    const std::string extension = lowered(std::filesystem::path(path).extension().string());
    if (extension == ".klp")
        return InterchangeFormat::Klp;
    if (extension == ".tsv" || extension == ".txt")
        return InterchangeFormat::Tsv;
    return looksLikeTsv(text) ? InterchangeFormat::Tsv : InterchangeFormat::Klp;
}

const char* interchangeExtension(InterchangeFormat format)
{
    return format == InterchangeFormat::Klp ? ".klp" : ".tsv";
}

ImportedDocument importDocument(std::string_view bytes, const std::string& path)
{
    std::string text;
    std::string why;
    if (!decodeText(bytes, text, why))
        throw InterchangeError{0, why};
    TimedParameters parameters;
    InterchangeError error;
    const bool read = interchangeFormatOf(path, text) == InterchangeFormat::Klp
                          ? readKlp(text, parameters, error)
                          : readTsv(text, parameters, error);
    if (!read)
        throw error;
    ImportedDocument imported;
    imported.document = documentFromTimedParameters(parameters);
    if (!parameters.unknownNames.empty())
        imported.warnings.push_back("no parameter here is named " + joinNames(parameters.unknownNames) +
                                    ": left out");
    if (const std::int64_t clamped = imported.document->m_nClampedValues; clamped > 0)
        imported.warnings.push_back(plural(clamped, "value was", "values were") +
                                    " outside the parameter's limits and clamped to them");
    return imported;
}

std::string exportDocument(MyDocument& document, InterchangeFormat format)
{
    return format == InterchangeFormat::Klp ? writeKlp(document) : writeTsv(document);
}
