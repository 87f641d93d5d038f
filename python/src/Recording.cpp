#include "Recording.h"

#include "PythonErrors.h"

std::unique_ptr<MyDocument> recordingDocument(const std::vector<float>& samples, double rate)
{
    auto document = std::make_unique<MyDocument>();
    withFile("samples", [&] {
        if (!document->setModelSamples(samples, rate))
            throw BadArgument("samples: no samples, an unusable sample rate or more than an hour of audio");
    });
    return document;
}

std::unique_ptr<MyDocument> openedRecording(const std::vector<float>& samples, double rate)
{
    const std::string wave = recordingDocument(samples, rate)->save_Wave_FileType(2);
    auto document = std::make_unique<MyDocument>();
    withFile("samples", [&] {
        int errorCode = 0;
        if (!document->readFromBytes(wave, "stk", &errorCode))
            throw BadArgument("samples: " + document->lastReadError());
    });
    return document;
}

void SpectrogramOptions::check() const
{
    requireRange("columns", columns, 1, 5000);
    requireRange("rows", rows, 1, 2000);
    requireRange("window", window, 2, 8192);
    if (frequencyRange)
        requireRange("frequency_range", *frequencyRange, 1, 1000000);
    if (order)
        requireRange("order", *order, 2, 400);
    requireRange("preemphasis", preemphasis, 0.0, 1.0);
    requireRange("dynamic_range", dynamicRange, 1, 200);
}

void SpectrogramOptions::applyTo(MyDocument& document, double rate) const
{
    document.setAnalysisDefaults(rate);
    document.m_nSpecWindowLength = window;
    if (frequencyRange)
        document.m_nSpecfrequencyRange = *frequencyRange;
    if (order)
        document.m_nSpecLPCNumberofCoefficients = *order;
    document.m_dPreEmphasis = preemphasis;
    document.m_nSpecDynamicRange = dynamicRange;
}
