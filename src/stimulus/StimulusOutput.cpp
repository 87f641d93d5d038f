#include "stimulus/StimulusOutput.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{

// A whole decimal number within [low, high]; false for anything else (trailing text included).
bool parseNumber(const std::string& text, double low, double high, double& value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    const double v = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size() || !std::isfinite(v) || v < low || v > high)
        return false;
    value = v;
    return true;
}

bool parseFlag(const std::string& text, bool& value)
{
    if (text.empty() || text == "1" || text == "true" || text == "yes" || text == "on")
        value = true;
    else if (text == "0" || text == "false" || text == "no" || text == "off")
        value = false;
    else
        return false;
    return true;
}

std::string number(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    return text;
}

bool fail(std::string* error, std::string message)
{
    if (error)
        *error = std::move(message);
    return false;
}

bool setNormalize(StimulusOutput& o, const std::string& value, std::string* error)
{
    if (value == "off" || value == "none") {
        o.level = StimulusOutput::Level::Unchanged;
        return true;
    }
    const std::size_t colon = value.find(':');
    const std::string kind = value.substr(0, colon);
    double db = 0.0;
    if (colon == std::string::npos || (kind != "rms" && kind != "peak") ||
        !parseNumber(value.substr(colon + 1), StimulusOutput::kLowestLevelDb, 0.0, db))
        return fail(error,
                    "\"" + value + "\" is not rms:DB or peak:DB with DB from -100 to 0 (dB re full scale)");
    o.level = kind == "rms" ? StimulusOutput::Level::Rms : StimulusOutput::Level::Peak;
    o.levelDb = db;
    return true;
}

bool setPad(StimulusOutput& o, const std::string& value, std::string* error)
{
    const std::size_t comma = value.find(',');
    double before = 0.0, after = 0.0;
    const bool ok = comma == std::string::npos
                        ? parseNumber(value, 0.0, StimulusOutput::kMaxPadMS, before)
                        : parseNumber(value.substr(0, comma), 0.0, StimulusOutput::kMaxPadMS, before) &&
                              parseNumber(value.substr(comma + 1), 0.0, StimulusOutput::kMaxPadMS, after);
    if (!ok)
        return fail(error, "\"" + value + "\" is not MS or BEFORE,AFTER in ms from 0 to 60000");
    o.padBeforeMS = before;
    o.padAfterMS = comma == std::string::npos ? before : after;
    return true;
}

bool setNamed(StimulusOutput& o, const std::string& name, const std::string& value, std::string* error)
{
    double v = 0.0;
    if (name == "rate") {
        if (!parseNumber(value, StimulusOutput::kMinRate, StimulusOutput::kMaxRate, v) || v != std::floor(v))
            return fail(error, "\"" + value + "\" is not a whole rate from 8000 to 192000 Hz");
        o.rate = static_cast<int>(v);
    } else if (name == "normalize") {
        return setNormalize(o, value, error);
    } else if (name == "same-gain" || name == "allow-clip") {
        if (!parseFlag(value, name == "same-gain" ? o.sameGain : o.allowClip))
            return fail(error, "\"" + value + "\" is not on or off");
    } else if (name == "ramp") {
        if (!parseNumber(value, 0.0, StimulusOutput::kMaxRampMS, v))
            return fail(error, "\"" + value + "\" is not a ramp length in ms from 0 to 10000");
        o.rampMS = v;
    } else if (name == "pad") {
        return setPad(o, value, error);
    } else if (name == "bits") {
        if (value != "16" && value != "24")
            return fail(error, "\"" + value + "\" is not 16 or 24");
        o.bits = value == "16" ? 16 : 24;
    } else if (name == "format") {
        if (value != "wav" && value != "flac")
            return fail(error, "\"" + value + "\" is not wav or flac");
        o.format = value == "wav" ? StimulusOutput::Format::Wav : StimulusOutput::Format::Flac;
    } else {
        return fail(error, "no output option named \"" + name + "\"");
    }
    return true;
}

} // namespace

bool StimulusOutput::set(const std::string& name, const std::string& value, std::string* error)
{
    StimulusOutput changed = *this;
    if (!setNamed(changed, name, value, error))
        return false;
    changed.given = true;
    *this = changed;
    return true;
}

bool StimulusOutput::plain() const
{
    return !given && rate == 0 && level == Level::Unchanged && !sameGain && !allowClip && rampMS == 0.0 &&
           padBeforeMS == 0.0 && padAfterMS == 0.0 && bits == 16 && format == Format::Wav;
}

const char* StimulusOutput::extension() const
{
    return format == Format::Flac ? ".flac" : ".wav";
}

std::string StimulusOutput::normalizeText() const
{
    if (level == Level::Unchanged)
        return "off";
    return (level == Level::Rms ? "rms:" : "peak:") + number(levelDb);
}

std::string StimulusOutput::commandLine() const
{
    std::string text;
    const auto add = [&text](const std::string& option) { text += (text.empty() ? "" : " ") + option; };
    if (rate != 0)
        add("--rate " + std::to_string(rate));
    if (level != Level::Unchanged)
        add("--normalize " + normalizeText());
    if (sameGain)
        add("--same-gain");
    if (allowClip)
        add("--allow-clip");
    if (rampMS != 0.0)
        add("--ramp " + number(rampMS));
    if (padBeforeMS != 0.0 || padAfterMS != 0.0)
        add("--pad " + number(padBeforeMS) + "," + number(padAfterMS));
    if (bits != 16 || (given && text.empty() && format == Format::Wav))
        add("--bits " + std::to_string(bits));
    if (format != Format::Wav)
        add("--format flac");
    return text;
}

std::string StimulusOutput::summary() const
{
    std::string text = rate != 0 ? std::to_string(rate) + " Hz" : "synthesis rate";
    if (level != Level::Unchanged)
        text += std::string(level == Level::Rms ? ", RMS " : ", peak ") + number(levelDb) + " dBFS" +
                (sameGain ? " (one gain for all)" : "");
    if (rampMS > 0.0)
        text += ", " + number(rampMS) + " ms ramps";
    if (padBeforeMS > 0.0 || padAfterMS > 0.0)
        text += ", " + number(padBeforeMS) + "/" + number(padAfterMS) + " ms silence";
    text += ", " + std::to_string(bits) + "-bit " + (format == Format::Flac ? "FLAC" : "WAVE");
    return text;
}
