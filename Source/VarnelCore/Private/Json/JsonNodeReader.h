#pragma once

#include "Core/Base/IdTable.h"
#include "Core/Json/JsonDocument.h"
#include "Json/JsonText.h"

/** A text without byte-order mark and where its tokens start. */
struct FJsonTokens
{
	std::string_view Text;
	const uint32* Starts = nullptr; // Num of them, then the text's size
	uint32 Num = 0;
	JsonText::FBrokenString Broken;
};

/** Memory that a reader leaves to the next one. */
struct FJsonNodeBuffers
{
	std::unique_ptr<char[]> Unescaped; // strings that held escapes, one after another; nodes point into it
	std::size_t UnescapedCapacity = 0;
	std::vector<uint32> OpenNodes;
	TIdTable<UINT32_MAX> Keys; // members of the object at hand, by key
};

/** Makes Buffer hold at least Size bytes; what it held is lost where it grows. */
void GrowBuffer(std::unique_ptr<char[]>& Buffer, std::size_t& Capacity, std::size_t Size);

/** Turns tokens into nodes, checking the whole grammar on the way. One reader reads one text. */
class FJsonNodeReader
{
public:
	enum class ETextEnd : uint8
	{
		Final,
		BeforeStop, // the text is cut where the member to stop before may start; reading succeeds only if it does start there or
					// earlier
	};

	/** Base is added to all offsets. What the lists held is replaced. */
	FJsonNodeReader(const FJsonTokens& InTokens, uint32 InBase, const FJsonReadOptions& InOptions, FJsonNodeBuffers& InBuffers,
		std::vector<FJsonNode>& OutNodes, std::vector<uint32>& OutRepeatedKeys);

	/** False where the text is not JSON: see the fault. */
	bool Read(ETextEnd InEnd);

	bool StoppedEarly() const { return bStoppedEarly; }
	/** Without Base. */
	std::size_t GetFaultOffset() const { return FaultOffset; }
	const std::string& GetFault() const { return Fault; }
	const char* GetFaultRule() const { return FaultRule; }

private:
	bool ReadElement();
	bool ReadMember();
	bool ReadKeyedValue();
	bool ReadValue(std::string_view Key, uint32 KeyOffset);
	bool ReadLiteral(FJsonNode& Node);
	bool ReadNumber(FJsonNode& Node);
	bool ReadString(std::string_view& Out);
	bool Open(FJsonNode& Node, EJsonNode Type);
	void Close();
	bool StopEarly();
	void FindRepeatedKeys(const FJsonNode& Object);
	void FindRepeatedKeysOfFew(const FJsonNode& Object);

	bool Accept()
	{
		++Cursor;
		return true;
	}
	bool IsAtEnd() const { return Cursor == Tokens.Num; }
	char Peek() const { return IsAtEnd() ? '\0' : Tokens.Text[PeekOffset()]; }
	uint32 PeekOffset() const { return Tokens.Starts[Cursor]; }
	std::string_view PeekToken() const;
	FJsonNode& Container() { return Nodes[Buffers.OpenNodes.back()]; }
	bool IsInRootObject() { return Buffers.OpenNodes.size() == 1; }
	uint32 IndexOf(const FJsonNode& Node) const { return static_cast<uint32>(&Node - Nodes.data()); }

	bool Fail(std::size_t Offset, std::string Why);
	bool FailTrailingComma();
	bool FailSeparator(char Closing);
	bool FailValue();
	bool FailUnclosed();
	bool FailTooMany();

	const FJsonTokens& Tokens;
	const uint32 Base;
	const FJsonReadOptions& Options;
	FJsonNodeBuffers& Buffers;
	std::vector<FJsonNode>& Nodes;
	std::vector<uint32>& RepeatedKeys;
	uint32 Cursor = 0;			// the next token
	std::size_t NextEscape = 0; // of the text, at or after the cursor
	char* UnescapedEnd = nullptr;
	ETextEnd End = ETextEnd::Final;
	bool bStoppedEarly = false;
	std::size_t FaultOffset = 0;
	std::string Fault;
	const char* FaultRule = "json-syntax";
};
