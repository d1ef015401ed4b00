#pragma once

#include <span>
#include <string_view>

/** The words that names and texts are made of. Name words are capitalised ASCII letters unless said otherwise. */
namespace Vocabulary
{
using FWords = std::span<const std::string_view>;

extern const FWords Subjects; // what a folder is about: creatures, places, things
extern const FWords Parts;	  // what an asset shows
extern const FWords Adjectives;
extern const FWords Actions;	  // what a character does, what a sound is of
extern const FWords Quantities;	  // what a variable or column holds
extern const FWords ForeignNames; // German and Russian words for names, beyond ASCII
extern const FWords PlainWords;	  // lower-case words of running text
extern const FWords GermanWords;  // running text
extern const FWords RussianWords; // running text
}
