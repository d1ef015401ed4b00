#pragma once

#include "Types.h"

#include <charconv>
#include <string>
#include <string_view>

/**
 * Appends compact JSON to a text. Commas are set by looking at the last character written, so a fragment can be written
 * into an empty text of its own and be put into an enclosing one later.
 */
class FJsonText
{
public:
	std::string Text;

	void BeginObject() { Open('{'); }
	void EndObject() { Text += '}'; }
	void BeginArray() { Open('['); }
	void EndArray() { Text += ']'; }

	void Key(std::string_view Name)
	{
		String(Name);
		Text += ':';
	}

	void BeginArray(std::string_view Name)
	{
		Key(Name);
		BeginArray();
	}

	void BeginObject(std::string_view Name)
	{
		Key(Name);
		BeginObject();
	}

	/** Begins a string whose characters the caller appends to Text; they must need no escape. */
	std::string& OpenString()
	{
		Open('"');
		return Text;
	}

	void CloseString() { Text += '"'; }

	void String(std::string_view Value)
	{
		Open('"');
		for (const char Character : Value)
		{
			if (Character == '"' || Character == '\\')
				Text += '\\';
			Text += Character;
		}
		Text += '"';
	}

	void Number(uint64 Value)
	{
		Separate();
		AppendNumber(Text, Value);
	}

	/** Writes Hundredths / 100 with two decimals. */
	void Decimal(uint32 Hundredths)
	{
		Number(Hundredths / 100);
		Text += '.';
		Text += static_cast<char>('0' + Hundredths / 10 % 10);
		Text += static_cast<char>('0' + Hundredths % 10);
	}

	/** Writes a fragment of JSON as it is: true, null, a piece made by another FJsonText. */
	void Raw(std::string_view Json)
	{
		if (Json.empty())
			return;
		Separate();
		Text += Json;
	}

	void Field(std::string_view Name, std::string_view Value)
	{
		Key(Name);
		String(Value);
	}

	void Field(std::string_view Name, const char* Value) { Field(Name, std::string_view(Value)); }

	void Field(std::string_view Name, bool bValue)
	{
		Key(Name);
		Raw(bValue ? "true" : "false");
	}

	void Field(std::string_view Name, uint32 Value)
	{
		Key(Name);
		Number(Value);
	}

	static void AppendNumber(std::string& Out, uint64 Value)
	{
		char Digits[20];
		const auto End = std::to_chars(Digits, Digits + sizeof Digits, Value).ptr;
		Out.append(Digits, End);
	}

private:
	void Open(char Bracket)
	{
		Separate();
		Text += Bracket;
	}

	void Separate()
	{
		if (Text.empty())
			return;
		const char Last = Text.back();
		if (Last != '{' && Last != '[' && Last != ':')
			Text += ',';
	}
};
