#include "Core/Json/Json.h"
#include "Core/Text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace
{
/** What becomes of a byte in a string: 0 stays, 1 is not ASCII, 'u' is written by its number, others follow a backslash. */
struct FEscapeTable
{
	char KindOf[256] = {};

	constexpr void Set(char Byte, char Kind) { KindOf[static_cast<uint8>(Byte)] = Kind; }

	constexpr FEscapeTable()
	{
		for (int32 Byte = 0; Byte < 0x20; ++Byte)
			KindOf[Byte] = 'u';
		for (int32 Byte = 0x80; Byte < 0x100; ++Byte)
			KindOf[Byte] = 1;
		Set('\b', 'b');
		Set('\f', 'f');
		Set('\n', 'n');
		Set('\r', 'r');
		Set('\t', 't');
		Set('"', '"');
		Set('\\', '\\');
	}
};

constexpr FEscapeTable Escapes;
constexpr double FirstInexactInteger = 9007199254740992.0; // 2^53

char EscapeKind(char Character)
{
	return Escapes.KindOf[static_cast<unsigned char>(Character)];
}

template <class TNumber>
void AppendDigits(std::string& Out, TNumber Value)
{
	char Digits[32];
	Out.append(Digits, std::to_chars(Digits, Digits + sizeof(Digits), Value).ptr);
}

/** The first byte from At on that does not stay as it is; the text's length when there is none. */
std::size_t FindEscape(std::string_view Text, std::size_t At)
{
	return static_cast<std::size_t>(
		std::find_if(Text.begin() + static_cast<std::ptrdiff_t>(At), Text.end(), [](char C) { return EscapeKind(C) > 1; }) -
		Text.begin());
}

void AppendEscape(std::string& Out, char Character)
{
	constexpr char HexDigits[] = "0123456789abcdef";
	Out += '\\';
	Out += EscapeKind(Character);
	if (EscapeKind(Character) == 'u')
	{
		Out += "00";
		Out += HexDigits[Character >> 4];
		Out += HexDigits[Character & 15];
	}
}

/** Text is valid UTF-8. */
void AppendEscaped(std::string& Out, std::string_view Text)
{
	std::size_t Written = 0;
	for (std::size_t At = FindEscape(Text, 0); At < Text.size(); At = FindEscape(Text, At + 1))
	{
		Out.append(Text, Written, At - Written);
		AppendEscape(Out, Text[At]);
		Written = At + 1;
	}
	Out.append(Text, Written);
}

/** Where a writer puts its text. */
struct FTextOut
{
	std::string& Text;

	void Add(std::string_view Piece) { Text.append(Piece); }
	void AddQuoted(std::string_view String) { Json::AppendQuoted(Text, String); }
};

/** Counts what would be written. */
struct FSizeOut
{
	FJsonSize Size;

	/** Nothing of the piece needs an escape but quotes and backslashes. */
	void Add(std::string_view Piece)
	{
		const auto NumEscaped = std::count_if(Piece.begin(), Piece.end(), [](char C) { return C == '"' || C == '\\'; });
		Size.NumBytes += static_cast<int64>(Piece.size());
		Size.NumBytesInString += static_cast<int64>(Piece.size()) + NumEscaped;
	}

	void AddQuoted(std::string_view String)
	{
		if (!Unicode::IsValidUtf8(String))
			return AddQuoted(Unicode::RepairUtf8(String));
		std::string Escape;
		std::size_t Counted = 0;
		Add("\"");
		for (std::size_t At = FindEscape(String, 0); At < String.size(); At = FindEscape(String, At + 1))
		{
			AddPlain(At - Counted);
			Escape.clear();
			AppendEscape(Escape, String[At]);
			Add(Escape);
			Counted = At + 1;
		}
		AddPlain(String.size() - Counted);
		Add("\"");
	}

private:
	void AddPlain(std::size_t NumBytes)
	{
		Size.NumBytes += static_cast<int64>(NumBytes);
		Size.NumBytesInString += static_cast<int64>(NumBytes);
	}
};
}

/** Writes one value; recursion ends at the depth that reading allows. */
template <class TOut>
class TJsonWriter
{
public:
	enum class EForm : uint8
	{
		Compact,
		Pretty,
	};

	explicit TJsonWriter(TOut InOut, EForm InForm = EForm::Compact) : Out(InOut), Form(InForm) {}

	void WriteValue(const FJsonValue& Value)
	{
		std::visit([this](const auto& Alternative) { this->Write(Alternative); }, Value.Data);
	}

	void WriteObject(const FJsonObject& Object)
	{
		WriteContainer("{}", Object.GetFields(),
			[this](const FJsonObject::FField& Field)
			{
				Out.AddQuoted(Field.Key);
				Out.Add(Form == EForm::Pretty ? ": " : ":");
				WriteValue(Field.Value);
			});
	}

	const TOut& GetOut() const { return Out; }

private:
	void Write(std::monostate) { Out.Add("null"); }
	void Write(bool Value) { Out.Add(Value ? "true" : "false"); }
	void Write(int64 Value)
	{
		char Digits[32];
		Out.Add({Digits, std::to_chars(Digits, Digits + sizeof(Digits), Value).ptr});
	}
	void Write(double Value)
	{
		std::string Number;
		Json::AppendNumber(Number, Value);
		Out.Add(Number);
	}
	void Write(const FString& Value) { Out.AddQuoted(Value); }
	void Write(const TSharedPtr<FJsonObject>& Value) { WriteObject(*Value); }
	void Write(const TSharedPtr<const FJsonArray>& Value)
	{
		WriteContainer("[]", *Value, [this](const FJsonValue& Element) { WriteValue(Element); });
	}

	template <class TItems, class TWriteItem>
	void WriteContainer(const char* Brackets, const TItems& Items, TWriteItem WriteItem)
	{
		if (Depth == Json::MaxPackageDepth)
			return Write(std::monostate());
		Out.Add({Brackets, 1});
		++Depth;
		bool bIsFirst = true;
		for (const auto& Item : Items)
		{
			if (!bIsFirst)
				Out.Add(",");
			bIsFirst = false;
			BreakLine();
			WriteItem(Item);
		}
		--Depth;
		if (!bIsFirst)
			BreakLine();
		Out.Add({Brackets + 1, 1});
	}

	void BreakLine()
	{
		if (Form == EForm::Pretty)
			Out.Add("\n" + std::string(static_cast<std::size_t>(Depth) * 2, ' '));
	}

	TOut Out;
	EForm Form;
	int32 Depth = 0;
};

namespace Json
{
FString Write(const FJsonValue& Value)
{
	std::string Text;
	TJsonWriter(FTextOut{Text}).WriteValue(Value);
	return Text;
}

FString Write(const FJsonObject& Object)
{
	std::string Text;
	Append(Text, Object);
	return Text;
}

FString WritePretty(const FJsonObject& Object)
{
	std::string Text;
	TJsonWriter(FTextOut{Text}, TJsonWriter<FTextOut>::EForm::Pretty).WriteObject(Object);
	return Text;
}

void Append(std::string& Out, const FJsonObject& Object)
{
	TJsonWriter(FTextOut{Out}).WriteObject(Object);
}

FJsonSize Measure(const FJsonValue& Value)
{
	TJsonWriter<FSizeOut> Writer(FSizeOut{});
	Writer.WriteValue(Value);
	return Writer.GetOut().Size;
}

void AppendQuoted(std::string& Out, std::string_view Text)
{
	Out += '"';
	if (Unicode::IsValidUtf8(Text))
		AppendEscaped(Out, Text);
	else
		AppendEscaped(Out, Unicode::RepairUtf8(Text));
	Out += '"';
}

void AppendNumber(std::string& Out, double Value)
{
	if (std::isnan(Value))
		Out += "null";
	else if (std::abs(Value) < FirstInexactInteger && std::trunc(Value) == Value)
		AppendDigits(Out, static_cast<int64>(Value));
	else if (std::isinf(Value))
		AppendDigits(Out, std::copysign(std::numeric_limits<double>::max(), Value));
	else
		AppendDigits(Out, Value);
}
}
