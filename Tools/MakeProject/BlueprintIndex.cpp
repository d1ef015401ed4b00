#include "BlueprintIndex.h"
#include "Phrases.h"
#include "Vocabulary.h"

#include <algorithm>

namespace
{
constexpr std::string_view PlainNodes[] = {"Branch", "Sequence", "Delay", "For Each Loop", "Print Text", "Is Valid",
	"Spawn Actor", "Destroy Actor", "Get Owner", "Set Timer", "Play Sound", "Play Effect", "Line Trace", "Make Array",
	"Return Node"};
constexpr std::string_view PinNames[] = {
	"Target", "Condition", "Value", "Return Value", "Object", "Index", "Location", "Rotation", "Duration"};

class FIndexWriter
{
public:
	FIndexWriter(FJsonText& InJson, FRandom& InRandom, const std::vector<FVariable>& InVariables, uint32 NumEntries)
		: Json(InJson)
		, Random(InRandom)
		, Variables(InVariables)
		, EntriesLeft(NumEntries)
	{
	}

	void Write()
	{
		for (const FVariable& Variable : Variables)
		{
			if (!Begin("Var"))
				return;
			Json.Field("text", Variable.Name);
			if (Random.OneIn(8))
				WriteComment();
			Json.EndObject();
		}
		for (uint32 Graph = 0; EntriesLeft != 0; ++Graph)
			WriteGraph(Graph);
	}

private:
	/** Opens an entry as long as some are left. */
	bool Begin(std::string_view Category)
	{
		if (EntriesLeft == 0)
			return false;
		--EntriesLeft;
		Json.BeginObject();
		Json.Field("category", Category);
		return true;
	}

	void WriteComment()
	{
		Json.Key("comment");
		Phrases::WriteSentence(Json, Random);
	}

	void WriteGraph(uint32 Graph)
	{
		if (!Begin("Graph"))
			return;
		Json.Key("text");
		std::string& Text = Json.OpenString();
		if (Graph == 0)
			Text += "EventGraph";
		else
		{
			Text += Random.Pick(Vocabulary::Actions);
			Text += Random.Pick(Vocabulary::Parts);
		}
		Json.CloseString();
		Json.BeginArray("children");
		const uint32 NumNodes = 2 + Random.HeavyTailed((Graph == 0 ? 12 : 6) * 256);
		for (uint32 Node = 0; Node < NumNodes && EntriesLeft != 0; ++Node)
			Random.OneIn(12) ? WriteCommentBox() : WriteNode();
		Json.EndArray();
		Json.EndObject();
	}

	void WriteCommentBox()
	{
		if (!Begin("Comment"))
			return;
		Json.Key("text");
		Phrases::WriteSentence(Json, Random);
		Json.EndObject();
	}

	void WriteNode()
	{
		if (!Begin("Node"))
			return;
		Json.Key("text");
		AppendNodeText(Json.OpenString());
		Json.CloseString();
		if (Random.OneIn(15))
			WriteComment();
		const uint32 NumPins = std::min(Random.Below(4), EntriesLeft);
		if (NumPins != 0)
		{
			Json.BeginArray("children");
			for (uint32 Pin = 0; Pin < NumPins; ++Pin)
				WritePin();
			Json.EndArray();
		}
		Json.EndObject();
	}

	void AppendNodeText(std::string& Text)
	{
		const uint32 Kind = Random.Below(4);
		if (Kind == 0)
			Text += Random.Pick(PlainNodes);
		else if (Kind == 1 && !Variables.empty())
		{
			Text += Random.Chance(170) ? "Get " : "Set ";
			Text += Random.Pick(Variables).Name;
		}
		else
		{
			Text += Random.Pick(Vocabulary::Actions);
			Text += ' ';
			Text += Random.Pick(Vocabulary::Parts);
		}
	}

	void WritePin()
	{
		if (!Begin("Pin"))
			return;
		Json.Field("text", Random.Chance(128) ? Random.Pick(PinNames) : Random.Pick(Vocabulary::Quantities));
		Json.EndObject();
	}

	FJsonText& Json;
	FRandom& Random;
	const std::vector<FVariable>& Variables;
	uint32 EntriesLeft;
};
}

void WriteIndex(FJsonText& Index, FRandom& Random, const std::vector<FVariable>& Variables, uint32 MeanEntries)
{
	FIndexWriter(Index, Random, Variables, Random.HeavyTailed(MeanEntries * 256)).Write();
}
