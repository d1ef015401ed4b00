#pragma once

#include "JsonText.h"
#include "Random.h"

/** Short texts in words of the vocabulary, for people to read. Some are German or Russian. */
namespace Phrases
{
/** Appends Num words with spaces between them. */
void AppendWords(std::string& Out, FRandom& Random, uint32 Num);

/** Writes a string such as "Rusty Lantern" or, seldom, a German or Russian word. */
void WriteTitle(FJsonText& Json, FRandom& Random);

/** Writes a string of 3 to 12 words. */
void WriteSentence(FJsonText& Json, FRandom& Random);
}
