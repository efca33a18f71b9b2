#pragma once

#include "system/controls/InputControl.h"
#include "system/controls/ProxyGesture.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/Container.h"
#include "system/widgets/MxLineEdit.h"

#include <string>

#include <QPointer>

namespace Marlox {

/// What an InputControl keeps besides its public state. Internal to the library.
class InputControl::Private {
public:
    /// What the control was last told of an input, to notice what changed.
    struct Seen {
        std::string expression;
        std::string source;
    };
    /// Where the expression line of an input goes, and the line once it was needed.
    struct ExpressionPlace {
        unsigned int index = 0;
        LayoutObj* object = nullptr;     // where the container is made when it is needed
        QPointer<Container> container{}; // neither: `rect` of the control itself
        MxRect rect{};
        QPointer<MxLineEdit> line{};
    };

    ExpressionPlace* PlaceOf(unsigned int index)
    {
        for (ExpressionPlace& place : places) {
            if (place.index == index)
                return &place;
        }
        return nullptr;
    }

    bool AddPlace(InputControl& self, ExpressionPlace place);
    ExpressionPlace* PlaceFor(InputControl& self, unsigned int index);
    void TellFault(const InputControl& self) const;

    TagList attributes;     // what the control was made from, strings copied
    TagList laterChanges;   // what SetAttrsTagList gave since; wins over the inputs' attributes
    Ref<Operator> owner;    // keeps the tool and its inputs while they are attached
    std::vector<Seen> seen; // one for each attached input
    std::vector<ExpressionPlace> places;
    std::vector<LayoutObj*> partLayouts;
    QString layoutName; // the resource that the layout is from
    QString fault;
    bool hidden = false;
    bool stretch = false;

    bool editDragging = false;
    ProxyGesture proxy; // while an edit is dragged
};

/// An undo group for as long as it lives; without a document it does nothing.
class UndoGroup {
public:
    UndoGroup(MarloxDoc* document, const QString& text) : document_(document)
    {
        if (document_)
            document_->Undo().Begin(text);
    }
    ~UndoGroup()
    {
        if (document_)
            document_->Undo().End();
    }
    UndoGroup(const UndoGroup&) = delete;
    UndoGroup& operator=(const UndoGroup&) = delete;

private:
    QPointer<MarloxDoc> document_;
};

/// Height of the rows of text and of plain lines in the inspector, in pixels.
inline constexpr int InspectorLineHeight = 24;

} // namespace Marlox
