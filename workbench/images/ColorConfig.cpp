#include "workbench/images/ColorConfig.h"

#include <cmath>

#include <OpenColorIO/OpenColorIO.h>

namespace Marlox {

namespace {

namespace ocio = OCIO_NAMESPACE;

constexpr char linearName[] = "Linear Rec.709";
constexpr char srgbName[] = "sRGB";
constexpr char filmLogName[] = "film_log";

ocio::TransformRcPtr srgbFromLinear()
{
    // IEC 61966-2-1, mirrored below zero so that negative light survives a round trip.
    auto curve = ocio::ExponentWithLinearTransform::Create();
    curve->setGamma({2.4, 2.4, 2.4, 1.0});
    curve->setOffset({0.055, 0.055, 0.055, 0.0});
    curve->setNegativeStyle(ocio::NEGATIVE_MIRROR);
    curve->setDirection(ocio::TRANSFORM_DIR_INVERSE);
    return curve;
}

ocio::TransformRcPtr filmLogFromLinear()
{
    // Film scans: 0.002 density a code, negative gamma 0.6, black at code 95, white at 685 of 1023.
    const double slope = 0.6 / 0.002 / 1023.0;
    const double black = std::pow(10.0, (95.0 - 685.0) * 0.002 / 0.6);
    const double logSlope[] = {slope, slope, slope};
    const double logOffset[] = {685.0 / 1023.0, 685.0 / 1023.0, 685.0 / 1023.0};
    const double linearSlope[] = {1.0 - black, 1.0 - black, 1.0 - black};
    const double linearOffset[] = {black, black, black};
    auto curve = ocio::LogAffineTransform::Create();
    curve->setBase(10.0);
    curve->setLogSideSlopeValue(logSlope);
    curve->setLogSideOffsetValue(logOffset);
    curve->setLinSideSlopeValue(linearSlope);
    curve->setLinSideOffsetValue(linearOffset);
    return curve;
}

void addSpace(ocio::Config& config, const char* name, const char* encoding,
              const ocio::TransformRcPtr& fromLinear)
{
    auto space = ocio::ColorSpace::Create();
    space->setName(name);
    space->setEncoding(encoding);
    space->setBitDepth(ocio::BIT_DEPTH_F32);
    if (fromLinear)
        space->setTransform(fromLinear, ocio::COLORSPACE_DIR_FROM_REFERENCE);
    config.addColorSpace(space);
}

ocio::ConstConfigRcPtr makeConfig()
{
    auto config = ocio::Config::Create();
    config->setVersion(2, 1);
    addSpace(*config, linearName, "scene-linear", {});
    addSpace(*config, srgbName, "sdr-video", srgbFromLinear());
    addSpace(*config, filmLogName, "log", filmLogFromLinear());
    config->setRole(ocio::ROLE_SCENE_LINEAR, linearName);
    config->setRole(ocio::ROLE_DEFAULT, linearName);
    config->setRole(ocio::ROLE_COLOR_PICKING, srgbName);
    config->addDisplayView("sRGB", "Standard", srgbName, "");
    config->addDisplayView("sRGB", "Log", filmLogName, ""); // blacks and highlights at a glance
    config->addDisplayView("sRGB", "Linear", linearName, "");
    config->setActiveDisplays("sRGB");
    config->setActiveViews("Standard, Log, Linear");
    config->validate();
    return config;
}

/// Exact arithmetic instead of the fast one for screens: 16-bit files must come back unchanged.
ocio::ConstCPUProcessorRcPtr processor(const char* from, const char* to)
{
    return BuiltInColorConfig()->getProcessor(from, to)->getOptimizedCPUProcessor(
        ocio::OPTIMIZATION_LOSSLESS);
}

struct FileProcessors {
    ocio::ConstCPUProcessorRcPtr srgbDecode = processor(srgbName, linearName);
    ocio::ConstCPUProcessorRcPtr srgbEncode = processor(linearName, srgbName);
    ocio::ConstCPUProcessorRcPtr filmLogDecode = processor(filmLogName, linearName);
    ocio::ConstCPUProcessorRcPtr filmLogEncode = processor(linearName, filmLogName);
};

const FileProcessors& fileProcessors()
{
    static const FileProcessors processors;
    return processors;
}

void apply(const ocio::ConstCPUProcessorRcPtr& colors, float* rgba, std::size_t pixels)
{
    ocio::PackedImageDesc strip(rgba, long(pixels), 1, 4);
    colors->apply(strip);
}

} // namespace

ocio::ConstConfigRcPtr BuiltInColorConfig()
{
    static const ocio::ConstConfigRcPtr config = makeConfig();
    return config;
}

void DecodeColors(ColorEncoding encoding, float* rgba, std::size_t pixels)
{
    if (encoding == ColorEncoding::Srgb)
        apply(fileProcessors().srgbDecode, rgba, pixels);
    else if (encoding == ColorEncoding::FilmLog)
        apply(fileProcessors().filmLogDecode, rgba, pixels);
}

void EncodeColors(ColorEncoding encoding, float* rgba, std::size_t pixels)
{
    if (encoding == ColorEncoding::Srgb)
        apply(fileProcessors().srgbEncode, rgba, pixels);
    else if (encoding == ColorEncoding::FilmLog)
        apply(fileProcessors().filmLogEncode, rgba, pixels);
}

} // namespace Marlox
