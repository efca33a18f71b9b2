#pragma once

#include <vector>

namespace Marlox {

/// The static objects of a kind that libraries declare while they load and withdraw when they are
/// unloaded, in the order they were made, linked through themselves: each has a member `links_` of
/// type Links and makes the list its friend. To be `constinit`, so that it is there before any of
/// them. Without a lock: libraries load one at a time.
template <class Declaration>
class DeclarationList {
public:
    struct Links {
        Declaration* previous = nullptr;
        Declaration* next = nullptr;
    };

    void Append(Declaration& declaration) noexcept
    {
        declaration.links_.previous = last_;
        (last_ ? last_->links_.next : first_) = &declaration;
        last_ = &declaration;
    }

    void Remove(Declaration& declaration) noexcept
    {
        const Links& links = declaration.links_;
        (links.previous ? links.previous->links_.next : first_) = links.next;
        (links.next ? links.next->links_.previous : last_) = links.previous;
    }

    std::vector<const Declaration*> All() const
    {
        std::vector<const Declaration*> all;
        for (const Declaration* each = first_; each; each = each->links_.next)
            all.push_back(each);
        return all;
    }

private:
    Declaration* first_ = nullptr;
    Declaration* last_ = nullptr;
};

} // namespace Marlox
