#include "system/controls/ColorDrag.h"

#include "system/controls/InputControl.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QPixmap>
#include <QPointer>

namespace Marlox {

namespace {

constexpr char mimeType[] = "application/x-marlox-color";

/// The data of a drag, which only this process can read: it is the control itself.
class ColorData final : public QMimeData {
public:
    explicit ColorData(InputControl& source) : source_(&source) { setData(mimeType, "1"); }
    InputControl* Source() const { return source_; }

private:
    QPointer<InputControl> source_;
};

} // namespace

CopyColorEvent::~CopyColorEvent() = default;

void ColorDrag::Run(InputControl& source, QWidget& from, const QPixmap& swatch)
{
    auto* drag = new QDrag(&from); // which deletes itself
    drag->setMimeData(new ColorData(source));
    drag->setPixmap(swatch);
    drag->exec(Qt::CopyAction);
}

InputControl* ColorDrag::SourceOf(const QMimeData* data)
{
    const auto* color = dynamic_cast<const ColorData*>(data);
    return color ? color->Source() : nullptr;
}

bool ColorDrag::Drop(const QMimeData* data, InputControl& target)
{
    InputControl* source = SourceOf(data);
    if (!source || source == &target || target.Inputs().empty())
        return false;
    CopyColorEvent event(target.Inputs());
    QCoreApplication::sendEvent(source, &event);
    return true;
}

} // namespace Marlox
