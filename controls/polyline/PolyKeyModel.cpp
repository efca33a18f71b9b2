#include "controls/polyline/PolyKeyModel.h"

#include "system/document/MarloxDoc.h"
#include "system/document/Preferences.h"
#include "system/resources/Resources.h"
#include "system/widgets/NumberEntry.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>

namespace Marlox {

namespace {

constexpr double sameFrame = 1e-6; // as animations tell keys apart
constexpr double furthestTime = 1'000'000.0;
constexpr MxColor keyColor{124, 192, 148};
constexpr MxColor currentColor{92, 158, 220};
constexpr int markSize = 16; // pixels

/// A diamond, as keys have everywhere; the one at the current time is filled.
QPixmap markOf(bool current)
{
    const double ratio = qApp->devicePixelRatio();
    QPixmap pixmap(QSize(markSize, markSize) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    const MxColor color = current
                              ? LookPack::Global().Color("System.CurrentTimeColour", currentColor)
                              : LookPack::Global().Color("System.KeyColour", keyColor);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color.ToQColor(), 1.25));
    if (current)
        painter.setBrush(color.ToQColor());
    painter.drawPolygon(QPolygonF({{8.0, 3.5}, {12.5, 8.0}, {8.0, 12.5}, {3.5, 8.0}}));
    return pixmap;
}

} // namespace

PolyKeyModel::PolyKeyModel(QObject* parent) : QAbstractTableModel(parent)
{
    connect(&Preferences::Global(), &Preferences::Changed, this, [this](const QString& name) {
        if (name == QLatin1String(TimeCodeEdit::PreferenceName) && !rows_.empty())
            emit dataChanged(index(0, TimeColumn), index(rowCount() - 1, TimeColumn));
    });
}

PolyKeyModel::~PolyKeyModel() = default;

void PolyKeyModel::SetInput(Input* input)
{
    if (input == input_)
        return;
    if (document_)
        document_->disconnect(this);
    input_ = input;
    owner_ = Ref<Operator>::Share(input ? &input->Owner() : nullptr);
    document_ = input ? input->GetDoc() : nullptr;
    if (document_) {
        MarloxDoc& document = *document_;
        connect(&document, &MarloxDoc::InputChanged, this, [this](Input* changed) {
            if (changed == input_)
                Read();
        });
        connect(&document, &MarloxDoc::ToolAdded, this, &PolyKeyModel::Read);
        connect(&document, &MarloxDoc::ToolRemoved, this, &PolyKeyModel::Read);
        connect(&document, &MarloxDoc::Cleared, this, [this] { // what it held never comes back
            if (!GetInput())
                SetInput(nullptr);
        });
        connect(&document, &QObject::destroyed, this, [this] { SetInput(nullptr); });
        connect(&document, &MarloxDoc::CurrentTimeChanged, this, &PolyKeyModel::ShowCurrent);
    }
    Read();
}

Input* PolyKeyModel::GetInput() const
{
    return input_ && document_ && document_->IndexOf(*owner_) >= 0 ? input_ : nullptr;
}

void PolyKeyModel::Read()
{
    std::vector<Row> rows;
    if (const Input* input = GetInput()) {
        for (const auto& [time, key] : input->GetAnimation().Keys())
            rows.push_back({time, key.interpolation});
    }
    if (rows != rows_) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    }
    emit KeysChanged();
}

void PolyKeyModel::ShowCurrent()
{
    if (!rows_.empty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, TimeColumn), {Qt::DecorationRole});
    emit CurrentTimeChanged();
}

// Rows --------------------------------------------------------------------------------------------

QString PolyKeyModel::KindName(Interpolation kind)
{
    switch (kind) {
    case Interpolation::Step:
        return tr("Step");
    case Interpolation::Linear:
        return tr("Linear");
    default:
        return tr("Smooth");
    }
}

QString PolyKeyModel::TimeText(double time) const
{
    NumberEntry entry;
    entry.time = true;
    entry.timeCode = Preferences::Global().Get(TimeCodeEdit::PreferenceName, false).toBool();
    entry.framesPerSecond = document_ ? document_->FrameRate() : entry.framesPerSecond;
    return entry.TextOf(time);
}

int PolyKeyModel::RowAt(double time) const
{
    const auto found = std::find_if(rows_.begin(), rows_.end(), [time](const Row& row) {
        return std::abs(row.time - time) < sameFrame;
    });
    return found == rows_.end() ? -1 : int(found - rows_.begin());
}

int PolyKeyModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(rows_.size());
}

int PolyKeyModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PolyKeyModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Row& row = rows_[std::size_t(index.row())];
    const bool isTime = index.column() == TimeColumn;
    const bool current = document_ && std::abs(document_->CurrentTime() - row.time) < sameFrame;
    switch (role) {
    case Qt::DisplayRole:
        return isTime ? TimeText(row.time) : KindName(row.kind);
    case Qt::EditRole:
    case TimeRole:
        return row.time;
    case Qt::DecorationRole:
        return isTime ? QVariant(markOf(current)) : QVariant();
    case Qt::AccessibleDescriptionRole:
        return current && isTime ? tr("at the current time") : QString();
    default:
        return {};
    }
}

QVariant PolyKeyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == TimeColumn ? tr("Time") : tr("Interpolation");
}

Qt::ItemFlags PolyKeyModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const Input* input = GetInput();
    if (index.column() == TimeColumn && input && input->IsChangeable())
        flags |= Qt::ItemIsEditable;
    return flags;
}

// Edits -------------------------------------------------------------------------------------------

/// The one that is shown, and its partner.
std::vector<Input*> PolyKeyModel::EditedInputs() const
{
    std::vector<Input*> inputs{input_};
    Input* const partner = partner_ ? partner_() : nullptr;
    if (partner && partner != input_)
        inputs.push_back(partner);
    return inputs;
}

bool PolyKeyModel::IsChangeable()
{
    if (!GetInput())
        return false;
    for (const Input* input : EditedInputs()) {
        if (!input->IsChangeable()) {
            emit Refused(tr("The keys are locked."));
            return false;
        }
    }
    return true;
}

bool PolyKeyModel::Remove(const std::vector<double>& times)
{
    if (times.empty() || !IsChangeable())
        return false;
    MarloxDoc& document = *document_;
    document.StartUndo("Remove Keys");
    bool removed = false;
    for (Input* input : EditedInputs()) {
        for (const double time : times) // one by one: the last one leaves its value
            removed = input->RemoveKey(time) || removed;
    }
    document.EndUndo(removed);
    return removed;
}

/// The input's keys when those at the times have moved; nothing, and Refused tells: they can't.
std::optional<Animation> PolyKeyModel::Moved(const Input& input, const std::vector<double>& times,
                                             double by)
{
    Animation moved = input.GetAnimation();
    for (const double time : times)
        moved.RemoveKey(time);
    const auto& keys = input.GetAnimation().Keys();
    for (const double time : times) {
        const auto key = std::find_if(keys.begin(), keys.end(), [time](const auto& row) {
            return std::abs(row.first - time) < sameFrame;
        });
        if (key == keys.end())
            continue;
        const double to = time + by;
        if (moved.HasKeyAt(to)) {
            emit Refused(tr("There is a key at %1 already.").arg(TimeText(to)));
            return {};
        }
        moved.SetKey(to, key->second.value, key->second.interpolation);
    }
    return moved;
}

bool PolyKeyModel::Move(const std::vector<double>& times, double by)
{
    if (times.empty() || std::abs(by) < sameFrame || !IsChangeable())
        return false;
    const auto isFar = [by](double time) { return !(std::abs(time + by) <= furthestTime); };
    if (std::any_of(times.begin(), times.end(), isFar)) {
        emit Refused(tr("Keys lie between frames -1000000 and 1000000."));
        return false;
    }
    std::vector<std::pair<Input*, Animation>> changes;
    for (Input* input : EditedInputs()) {
        std::optional<Animation> moved = Moved(*input, times, by);
        if (!moved)
            return false;
        if (!(*moved == input->GetAnimation()))
            changes.emplace_back(input, std::move(*moved));
    }
    MarloxDoc& document = *document_;
    document.StartUndo("Move Keys");
    bool done = !changes.empty();
    for (auto& [input, animation] : changes)
        done = done && input->SetAnimation(std::move(animation));
    document.EndUndo(done);
    return done;
}

bool PolyKeyModel::SetKind(const std::vector<double>& times, Interpolation kind)
{
    if (times.empty() || !IsChangeable())
        return false;
    MarloxDoc& document = *document_;
    document.StartUndo("Change Interpolation");
    bool done = false;
    for (Input* input : EditedInputs()) {
        Animation changed = input->GetAnimation();
        for (const auto& [time, key] : input->GetAnimation().Keys()) {
            const bool wanted = std::any_of(times.begin(), times.end(), [at = time](double other) {
                return std::abs(other - at) < sameFrame;
            });
            if (wanted)
                changed.SetKey(time, key.value, kind);
        }
        if (!(changed == input->GetAnimation()))
            done = input->SetAnimation(std::move(changed)) || done;
    }
    document.EndUndo(done);
    return done;
}

} // namespace Marlox
