#pragma once

#include <QString>

namespace booklet {

// The Markdown text with word joiners wherever a line should not end: a reader stumbles over a word or a name that is
// broken, and Japanese would be anywhere. Addresses and what is set as code stay as they are.
QString phrasesHeld(const QString& markdown);

} // namespace booklet
