#include "Engine/EnvQuery.h"
#include "Families/FamilyScan.h"

namespace
{
const char* GetPurposeText(uint8 Purpose)
{
	constexpr const char* Texts[] = {"Filter", "Score", "FilterAndScore"};
	return Purpose < std::size(Texts) ? Texts[Purpose] : "Unknown";
}

/** Names come from the class; values are never read. */
void ReadPropertyNames(const UObject& Object, const char* Kind, const char* Container, FHitSink& Hits)
{
	for (const FProperty* Property : PropertiesOf(*Object.GetClass()))
	{
		Hits.Add(Kind, Property->GetName(), Container);
		if (Hits.IsFull())
			return;
	}
}

void ReadGenerator(const UEnvQueryGenerator& Generator, FHitSink& Hits)
{
	Hits.Add("GeneratorClass", Generator.GetClass()->GetName(), "EnvQuery/Generator");
	ReadPropertyNames(Generator, "GeneratorProperty", "EnvQuery/GeneratorProperties", Hits);
}

void ReadTest(const UEnvQueryTest& Test, FHitSink& Hits)
{
	Hits.Add("TestClass", Test.GetClass()->GetName(), "EnvQuery/Test");
	Hits.Add("TestPurpose", GetPurposeText(Test.TestPurpose), "EnvQuery/Test");
	Hits.Add("TestComment", Test.TestComment, "EnvQuery/Test");
	ReadPropertyNames(Test, "TestProperty", "EnvQuery/TestProperties", Hits);
}

void ReadOption(const UEnvQueryOption& Option, FHitSink& Hits)
{
	Hits.Add("OptionName", Option.GetName(), "EnvQuery/Option");
	if (const UEnvQueryGenerator* Generator = Option.Generator)
		ReadGenerator(*Generator, Hits);
	for (const UEnvQueryTest* Test : Option.Tests)
	{
		if (!Test)
			continue;
		ReadTest(*Test, Hits);
		if (Hits.IsFull())
			return;
	}
}

void ReadQuery(const UEnvQuery& Query, FHitSink& Hits)
{
	for (const UEnvQueryOption* Option : Query.Options)
	{
		if (!Option)
			continue;
		ReadOption(*Option, Hits);
		if (Hits.IsFull())
			return;
	}
}
}

/** Options, generators and tests, and what properties their classes have. Loads queries. */
void SearchEnvQueries(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UEnvQuery>({.ClassText = "EnvQuery", .NameContainer = "EnvQuery"}, Params, OnDone, ReadQuery);
}
