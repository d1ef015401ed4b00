#include "Json/JsonNodeReader.h"

#include "Core/Base/SeededHash.h"
#include "Json/JsonKeyIndex.h"

#include <algorithm>

void GrowBuffer(std::unique_ptr<char[]>& Buffer, std::size_t& Capacity, std::size_t Size)
{
	if (Capacity >= Size)
		return;
	Capacity = std::max(Size, Capacity + Capacity / 2);
	Buffer = std::make_unique_for_overwrite<char[]>(Capacity);
}

namespace
{
constexpr uint32 ManyTokens = 1024 * 1024;
}

FJsonNodeReader::FJsonNodeReader(const FJsonTokens& InTokens, uint32 InBase, const FJsonReadOptions& InOptions,
	FJsonNodeBuffers& InBuffers, std::vector<FJsonNode>& OutNodes, std::vector<uint32>& OutRepeatedKeys)
	: Tokens(InTokens)
	, Base(InBase)
	, Options(InOptions)
	, Buffers(InBuffers)
	, Nodes(OutNodes)
	, RepeatedKeys(OutRepeatedKeys)
{
	Nodes.clear();
	RepeatedKeys.clear();
	if (Tokens.Num > ManyTokens) // growing step by step would take half as much again
		Nodes.reserve(static_cast<std::size_t>(std::min<int64>(Tokens.Num, Options.MaxValues)));
	Buffers.OpenNodes.clear();
	NextEscape = Tokens.Text.find('\\');
	if (NextEscape != std::string_view::npos)
		GrowBuffer(Buffers.Unescaped, Buffers.UnescapedCapacity, Tokens.Text.size()); // unescaping never lengthens
	UnescapedEnd = Buffers.Unescaped.get();
}

bool FJsonNodeReader::Read(ETextEnd InEnd)
{
	End = InEnd;
	if (Tokens.Num == 0)
		return Fail(Tokens.Text.size(), "the text is empty; a JSON value is needed");
	if (!ReadValue({}, 0))
		return false;
	while (!Buffers.OpenNodes.empty())
	{
		if (!(Container().Type == EJsonNode::Object ? ReadMember() : ReadElement()))
			return false;
	}
	std::sort(RepeatedKeys.begin(), RepeatedKeys.end()); // inner objects end before outer ones
	if (bStoppedEarly)
		return true;
	if (!IsAtEnd())
		return Fail(PeekOffset(), "nothing may follow the end of the JSON value");
	return End == ETextEnd::Final;
}

/** Reads the next element of the innermost array with the comma before it, or the array's end. */
bool FJsonNodeReader::ReadElement()
{
	if (Peek() == ']')
	{
		Close();
		return Accept();
	}
	if (Container().NumChildren > 0)
	{
		if (Peek() != ',')
			return FailSeparator(']');
		++Cursor;
		if (Peek() == ']')
			return FailTrailingComma();
	}
	return ReadValue({}, 0);
}

/** Reads the next member of the innermost object with the comma before it, or the object's end. */
bool FJsonNodeReader::ReadMember()
{
	if (Peek() == '}')
	{
		Close();
		return Accept();
	}
	if (Container().NumChildren > 0)
	{
		if (Peek() != ',')
			return FailSeparator('}');
		++Cursor;
		if (Peek() == '}')
			return FailTrailingComma();
	}
	if (IsAtEnd())
		return End == ETextEnd::BeforeStop && IsInRootObject() ? StopEarly() : FailUnclosed();
	if (Peek() != '"')
		return Fail(PeekOffset(), "a key in double quotes is needed here");
	return ReadKeyedValue();
}

bool FJsonNodeReader::ReadKeyedValue()
{
	const uint32 KeyOffset = PeekOffset() + Base;
	std::string_view Key;
	if (!ReadString(Key))
		return false;
	if (IsInRootObject() && !Options.StopBefore.empty() && Key == Options.StopBefore)
		return StopEarly();
	if (Peek() != ':')
		return IsAtEnd() ? FailUnclosed() : Fail(PeekOffset(), "a ':' is missing after the key");
	++Cursor;
	return ReadValue(Key, KeyOffset);
}

bool FJsonNodeReader::ReadValue(std::string_view Key, uint32 KeyOffset)
{
	if (IsAtEnd())
		return FailUnclosed();
	if (static_cast<int64>(Nodes.size()) >= Options.MaxValues)
		return FailTooMany();
	if (!Buffers.OpenNodes.empty())
		++Container().NumChildren;
	FJsonNode& Node = Nodes.emplace_back();
	Node.Next = static_cast<uint32>(Nodes.size());
	Node.Offset = PeekOffset() + Base;
	Node.KeyOffset = KeyOffset;
	Node.Key = Key;
	switch (Peek())
	{
		case '{':
			return Open(Node, EJsonNode::Object);
		case '[':
			return Open(Node, EJsonNode::Array);
		case '"':
			Node.Type = EJsonNode::String;
			return ReadString(Node.Text);
		case 't':
		case 'f':
		case 'n':
			return ReadLiteral(Node);
		default:
			return ReadNumber(Node);
	}
}

bool FJsonNodeReader::ReadLiteral(FJsonNode& Node)
{
	const std::string_view Token = PeekToken();
	if (Token == "true")
		Node.Type = EJsonNode::True;
	else if (Token == "false")
		Node.Type = EJsonNode::False;
	else if (Token != "null")
		return FailValue();
	return Accept();
}

bool FJsonNodeReader::ReadNumber(FJsonNode& Node)
{
	const std::string_view Token = PeekToken();
	if (Token.front() != '-' && (Token.front() < '0' || Token.front() > '9'))
		return FailValue();
	JsonText::FNumber Number;
	if (const char* const NumberFault = JsonText::ReadNumber(Token, Number))
		return Fail(PeekOffset(), NumberFault);
	Node.Type = Number.bIsInteger ? EJsonNode::Integer : EJsonNode::Double;
	if (Number.bIsInteger)
		Node.Integer = Number.Integer;
	else
		Node.Double = Number.Double;
	return Accept();
}

/** The next token without the blanks after it. */
std::string_view FJsonNodeReader::PeekToken() const
{
	const uint32 Start = PeekOffset();
	uint32 TokenEnd = Tokens.Starts[Cursor + 1];
	while (JsonText::IsBlank(Tokens.Text[TokenEnd - 1]))
		--TokenEnd;
	return Tokens.Text.substr(Start, TokenEnd - Start);
}

bool FJsonNodeReader::ReadString(std::string_view& Out)
{
	if (PeekOffset() == Tokens.Broken.Start)
		return Fail(Tokens.Broken.Position, Tokens.Broken.Text);
	const std::string_view Token = PeekToken(); // its last character is the closing quote
	Out = Token.substr(1, Token.size() - 2);
	const std::size_t TokenEnd = PeekOffset() + Token.size();
	if (NextEscape >= TokenEnd)
		return Accept();
	NextEscape = Tokens.Text.find('\\', TokenEnd);
	char* const Begin = UnescapedEnd;
	JsonText::FEscapeFault EscapeFault;
	if (!JsonText::Unescape(Out, UnescapedEnd, EscapeFault))
		return Fail(PeekOffset() + 1 + EscapeFault.Position, EscapeFault.Text);
	Out = {Begin, static_cast<std::size_t>(UnescapedEnd - Begin)};
	return Accept();
}

bool FJsonNodeReader::Open(FJsonNode& Node, EJsonNode Type)
{
	if (static_cast<int64>(Buffers.OpenNodes.size()) >= Options.MaxDepth)
		return Fail(PeekOffset(), "nested deeper than " + std::to_string(Options.MaxDepth) + " levels");
	Node.Type = Type;
	Buffers.OpenNodes.push_back(IndexOf(Node));
	return Accept();
}

void FJsonNodeReader::Close()
{
	FJsonNode& Node = Container();
	Node.Next = static_cast<uint32>(Nodes.size());
	if (Node.Type == EJsonNode::Object)
		FindRepeatedKeys(Node);
	Buffers.OpenNodes.pop_back();
}

bool FJsonNodeReader::StopEarly()
{
	bStoppedEarly = true;
	Close();
	return true;
}

void FJsonNodeReader::FindRepeatedKeys(const FJsonNode& Object)
{
	if (Object.NumChildren < JsonKeyIndex::MinMembers)
		return FindRepeatedKeysOfFew(Object);
	Buffers.Keys.Reset(Object.NumChildren);
	for (uint32 Index = IndexOf(Object) + 1; Index != Object.Next; Index = Nodes[Index].Next)
	{
		const uint64 Hash = SeededHash::HashBytes(Nodes[Index].Key);
		const auto HasKey = [&](uint32 Earlier) { return Nodes[Earlier].Key == Nodes[Index].Key; };
		if (Buffers.Keys.Find(Hash, HasKey) != UINT32_MAX)
			RepeatedKeys.push_back(Nodes[Index].KeyOffset);
		else
			Buffers.Keys.Add(Hash, Index);
	}
}

void FJsonNodeReader::FindRepeatedKeysOfFew(const FJsonNode& Object)
{
	const uint32 First = IndexOf(Object) + 1;
	for (uint32 Index = First; Index != Object.Next; Index = Nodes[Index].Next)
	{
		uint32 Earlier = First;
		while (Earlier != Index && Nodes[Earlier].Key != Nodes[Index].Key)
			Earlier = Nodes[Earlier].Next;
		if (Earlier != Index)
			RepeatedKeys.push_back(Nodes[Index].KeyOffset);
	}
}

bool FJsonNodeReader::Fail(std::size_t Offset, std::string Why)
{
	FaultOffset = Offset;
	Fault = std::move(Why);
	return false;
}

bool FJsonNodeReader::FailTooMany()
{
	FaultRule = "too-many-values";
	return Fail(
		PeekOffset(), "this is one value more than the " + std::to_string(Options.MaxValues) + " that a document may have");
}

bool FJsonNodeReader::FailTrailingComma()
{
	return Fail(Tokens.Starts[Cursor - 1], std::string("the ',' before the '") + Peek() + "' must be removed");
}

bool FJsonNodeReader::FailSeparator(char Closing)
{
	if (IsAtEnd())
		return FailUnclosed();
	return Fail(PeekOffset(), std::string("a ',' or '") + Closing + "' is missing before this");
}

bool FJsonNodeReader::FailValue()
{
	return Fail(PeekOffset(), JsonText::DescribeNoValue(Tokens.Text.substr(PeekOffset())));
}

bool FJsonNodeReader::FailUnclosed()
{
	const FJsonNode& Node = Container();
	const std::string Line = std::to_string(JsonText::Locate(Tokens.Text, Node.Offset - Base).Line);
	const char* const Bracket = Node.Type == EJsonNode::Object ? "'{'" : "'['";
	return Fail(Tokens.Text.size(), std::string("the text ends before the ") + Bracket + " of line " + Line + " is closed");
}
