#pragma once

#include "system/controls/HostDialogs.h"

namespace Marlox {

/// The dialogs that are used unless another service is installed. Scripts find them and their
/// fields by name: "message", "question", "asktext" with "text", "asknumber" with "number", "file",
/// "color" with "hue" (degrees), "saturation", "value", "red", "green", "blue", "alpha" (0 to 255)
/// and "html" ("#rrggbb").
class QtHostDialogs final : public HostDialogs {
public:
    void Message(Kind kind, const QString& text, const QString& details) override;
    Answer Ask(const QString& text, const QString& details, bool cancel) override;
    std::optional<QString> AskText(const TextRequest& request) override;
    std::optional<double> AskNumber(const NumberRequest& request) override;
    QString OpenFile(const FileRequest& request) override;
    QString SaveFile(const FileRequest& request) override;
    std::optional<MxColor> ChooseColor(const ColorRequest& request) override;
};

} // namespace Marlox
