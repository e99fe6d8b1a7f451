#include "ui/drafts.h"

#include <algorithm>

namespace ui {

namespace {

auto isOf(const QString& screen, const QString& key) {
    return [&screen, &key](const Draft& draft) { return draft.screen == screen && draft.key == key; };
}

} // namespace

void Drafts::keep(Draft draft) {
    if (!draft.ofNew) {
        if (const auto earlier = take(draft.screen, draft.key)) {
            for (const QString& box : earlier->typed) {
                if (draft.typed.contains(box))
                    continue;
                draft.boxes[box] = earlier->boxes.value(box);
                draft.typed << box;
            }
        }
    }
    drafts_.push_back(std::move(draft));
    changed();
}

std::optional<Draft> Drafts::take(const QString& screen, const QString& key) {
    const auto found = std::find_if(drafts_.rbegin(), drafts_.rend(), isOf(screen, key));
    if (found == drafts_.rend())
        return {};
    Draft draft = std::move(*found);
    drafts_.erase(std::next(found).base());
    changed();
    return draft;
}

void Drafts::end(const QString& screen, const QString& key) {
    if (std::erase_if(drafts_, isOf(screen, key)))
        changed();
}

void Drafts::endSaved(const QString& screen, const QHash<QString, QString>& boxes) {
    const auto saved = [&](const Draft& draft) {
        return draft.screen == screen && draft.ofNew && std::ranges::all_of(draft.typed, [&](const QString& box) {
                   return boxes.value(box) == draft.boxes.value(box);
               });
    };
    if (std::erase_if(drafts_, saved))
        changed();
}

const Draft* Drafts::find(const QString& screen, const QString& key) const {
    const auto found = std::find_if(drafts_.rbegin(), drafts_.rend(), isOf(screen, key));
    return found == drafts_.rend() ? nullptr : &*found;
}

void Drafts::turn() {
    if (drafts_.size() < 2)
        return;
    std::rotate(drafts_.begin(), drafts_.begin() + 1, drafts_.end());
    changed();
}

} // namespace ui
