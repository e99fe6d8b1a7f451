#include "ui/drafts.h"

#include <algorithm>

namespace ui {

namespace {

auto isOf(const QString& screen, const QString& key) {
    return [&screen, &key](const Draft& draft) { return draft.screen == screen && draft.key == key; };
}

} // namespace

void Drafts::keep(Draft draft) {
    std::erase_if(drafts_, isOf(draft.screen, draft.key));
    drafts_.push_back(std::move(draft));
    changed();
}

void Drafts::drop(const QString& screen, const QString& key) {
    if (std::erase_if(drafts_, isOf(screen, key)))
        changed();
}

const Draft* Drafts::find(const QString& screen, const QString& key) const {
    const auto found = std::ranges::find_if(drafts_, isOf(screen, key));
    return found == drafts_.end() ? nullptr : &*found;
}

} // namespace ui
