#include "Core/Json/Json.h"
#include "Core/Text/Unicode.h"

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
	for (std::size_t At = 0; At < Text.size(); ++At)
	{
		if (EscapeKind(Text[At]) <= 1)
			continue;
		Out.append(Text, Written, At - Written);
		AppendEscape(Out, Text[At]);
		Written = At + 1;
	}
	Out.append(Text, Written);
}
}

/** Writes one value; recursion ends at the depth that reading allows. */
class FJsonWriter
{
public:
	enum class EForm : uint8
	{
		Compact,
		Pretty,
	};

	explicit FJsonWriter(EForm InForm) : Form(InForm) {}

	void WriteValue(const FJsonValue& Value)
	{
		std::visit([this](const auto& Alternative) { Write(Alternative); }, Value.Data);
	}

	void WriteObject(const FJsonObject& Object)
	{
		WriteContainer("{}", Object.GetFields(),
			[this](const FJsonObject::FField& Field)
			{
				Json::AppendQuoted(Out, Field.Key);
				Out += Form == EForm::Pretty ? ": " : ":";
				WriteValue(Field.Value);
			});
	}

	FString Take() { return FString(std::move(Out)); }

private:
	void Write(std::monostate) { Out += "null"; }
	void Write(bool Value) { Out += Value ? "true" : "false"; }
	void Write(int64 Value) { AppendDigits(Out, Value); }
	void Write(double Value) { Json::AppendNumber(Out, Value); }
	void Write(const FString& Value) { Json::AppendQuoted(Out, Value); }
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
		Out += Brackets[0];
		++Depth;
		bool bIsFirst = true;
		for (const auto& Item : Items)
		{
			if (!bIsFirst)
				Out += ',';
			bIsFirst = false;
			BreakLine();
			WriteItem(Item);
		}
		--Depth;
		if (!bIsFirst)
			BreakLine();
		Out += Brackets[1];
	}

	void BreakLine()
	{
		if (Form == EForm::Pretty)
			Out.append(1, '\n').append(static_cast<std::size_t>(Depth) * 2, ' ');
	}

	EForm Form;
	std::string Out;
	int32 Depth = 0;
};

namespace Json
{
FString Write(const FJsonValue& Value)
{
	FJsonWriter Writer(FJsonWriter::EForm::Compact);
	Writer.WriteValue(Value);
	return Writer.Take();
}

FString Write(const FJsonObject& Object)
{
	FJsonWriter Writer(FJsonWriter::EForm::Compact);
	Writer.WriteObject(Object);
	return Writer.Take();
}

FString WritePretty(const FJsonObject& Object)
{
	FJsonWriter Writer(FJsonWriter::EForm::Pretty);
	Writer.WriteObject(Object);
	return Writer.Take();
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
