#include "Phrases.h"
#include "Vocabulary.h"

namespace
{
constexpr uint32 ForeignOneIn = 25;

Vocabulary::FWords PickLanguage(FRandom& Random)
{
	if (!Random.OneIn(ForeignOneIn))
		return Vocabulary::PlainWords;
	return Random.Chance(128) ? Vocabulary::GermanWords : Vocabulary::RussianWords;
}
}

void Phrases::AppendWords(std::string& Out, FRandom& Random, uint32 Num)
{
	const Vocabulary::FWords Words = PickLanguage(Random);
	for (uint32 Word = 0; Word < Num; ++Word)
	{
		if (Word != 0)
			Out += ' ';
		Out += Random.Pick(Words);
	}
}

void Phrases::WriteTitle(FJsonText& Json, FRandom& Random)
{
	std::string& Text = Json.OpenString();
	if (Random.OneIn(ForeignOneIn))
		Text += Random.Pick(Vocabulary::ForeignNames);
	else
	{
		Text += Random.Pick(Vocabulary::Adjectives);
		Text += ' ';
		Text += Random.Pick(Random.Chance(128) ? Vocabulary::Parts : Vocabulary::Subjects);
	}
	Json.CloseString();
}

void Phrases::WriteSentence(FJsonText& Json, FRandom& Random)
{
	AppendWords(Json.OpenString(), Random, Random.Between(3, 12));
	Json.CloseString();
}
