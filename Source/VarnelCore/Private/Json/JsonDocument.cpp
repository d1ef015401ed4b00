#include "Core/Json/JsonDocument.h"

#include "Core/Text/Unicode.h"
#include "Json/JsonNodeReader.h"
#include "Json/JsonTokenFinder.h"

#include <algorithm>
#include <cstring>
#include <limits>

/** What lives from parse to parse. */
struct FJsonDocument::FParser
{
	FJsonTokenFinder TokenFinder;
	std::vector<uint32> SlowTokens; // of texts that the token finder refuses
	std::unique_ptr<char[]> Copy;	// of the text, with padding
	std::size_t CopyCapacity = 0;
	FJsonNodeBuffers NodeBuffers;
	std::string QuotedStop;
};

namespace
{
constexpr std::size_t MaxKeptBytes = 16 * 1024 * 1024; // of buffers, for a text that needs far less or was refused
constexpr std::size_t SmallTextBytes = 1024 * 1024;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t MaxTextSize = std::numeric_limits<uint32>::max() - 1024; // offsets, and what is added to them, fit 32 bits

std::size_t SizeOfMark(std::string_view Source)
{
	return Source.starts_with(ByteOrderMark) ? ByteOrderMark.size() : 0;
}

/** Whether a text spells the key as it is: then the quoted key where a key may start is that key. */
bool IsSpeltPlainly(std::string_view Key)
{
	const auto NeedsEscape = [](char Character)
	{ return Character == '"' || Character == '\\' || static_cast<unsigned char>(Character) < 0x20; };
	return !Key.empty() && std::none_of(Key.begin(), Key.end(), NeedsEscape);
}

/** What comes before the first mention of a key; empty when there is none. */
std::string_view FindHead(std::string_view Input, std::string_view Key, std::string& Quoted)
{
	if (!IsSpeltPlainly(Key))
		return {};
	Quoted.assign(1, '"').append(Key).push_back('"');
	const void* const Found = memmem(Input.data(), Input.size(), Quoted.data(), Quoted.size());
	return Found ? Input.substr(0, static_cast<std::size_t>(static_cast<const char*>(Found) - Input.data())) : std::string_view();
}
}

/** The steps of one parse. */
struct FJsonDocumentReader
{
	enum class EInput : uint8
	{
		CopyFirst,
		KeepInPlace, // has padding after its end
	};

	FJsonDocument& Document;
	const FJsonReadOptions& Options;
	EInput How;

	bool Read(std::string_view Input)
	{
		Document.bRepaired = false;
		Document.Source = {};
		if (Input.size() <= SmallTextBytes)
			DropLargeBuffers();
		if (!Document.Parser)
			Document.Parser = std::make_unique<FJsonDocument::FParser>();
		if (Input.size() > MaxTextSize)
			return Fail(0, "the text is larger than 4 GiB");
		const std::string_view Head = FindHead(Input, Options.StopBefore, Document.Parser->QuotedStop);
		return (!Head.empty() && ReadHead(Head)) || ReadWhole(Input);
	}

private:
	/** False also where the mention proves not to be a member of the root. */
	bool ReadHead(std::string_view Head)
	{
		SetSource(Head);
		FJsonTokens Tokens;
		return FindTokens(Tokens) && ReadNodes(Tokens, FJsonNodeReader::ETextEnd::BeforeStop);
	}

	bool ReadWhole(std::string_view Input)
	{
		SetSource(Input);
		FJsonTokens Tokens;
		bool bFound = FindTokens(Tokens);
		if (!bFound && !Unicode::IsValidUtf8(Input))
		{
			if (!Repair(Input))
				return Fail(0, "the text is larger than 4 GiB once its UTF-8 is repaired");
			bFound = FindTokens(Tokens);
		}
		if (!bFound)
			FindTokensSlowly(Tokens);
		return ReadNodes(Tokens, FJsonNodeReader::ETextEnd::Final);
	}

	bool Repair(std::string_view Input)
	{
		const std::string Repaired = Unicode::RepairUtf8(Input);
		if (Repaired.size() > MaxTextSize)
			return false;
		Document.bRepaired = true;
		How = EInput::CopyFirst;
		SetSource(Repaired);
		return true;
	}

	void SetSource(std::string_view Input)
	{
		FJsonDocument::FParser& Parser = *Document.Parser;
		Document.Source = Input;
		if (How == EInput::KeepInPlace)
			return;
		GrowBuffer(Parser.Copy, Parser.CopyCapacity, Input.size() + FJsonDocument::GetPadding());
		std::copy(Input.begin(), Input.end(), Parser.Copy.get());
		Document.Source = {Parser.Copy.get(), Input.size()};
	}

	/** False where a string is not closed or holds a control character, for ill-formed UTF-8, and when there is no token. */
	bool FindTokens(FJsonTokens& Out)
	{
		Out.Text = Document.Source.substr(SizeOfMark(Document.Source));
		return Document.Parser->TokenFinder.Find(Out.Text, Out.Starts, Out.Num);
	}

	void FindTokensSlowly(FJsonTokens& Out)
	{
		std::vector<uint32>& Starts = Document.Parser->SlowTokens;
		Starts.clear();
		Out.Broken = JsonText::FindTokens(Out.Text, Starts);
		Out.Num = static_cast<uint32>(Starts.size());
		Starts.push_back(static_cast<uint32>(Out.Text.size()));
		Out.Starts = Starts.data();
	}

	bool ReadNodes(const FJsonTokens& Tokens, FJsonNodeReader::ETextEnd End)
	{
		const std::size_t Base = SizeOfMark(Document.Source);
		FJsonNodeReader Reader(
			Tokens, static_cast<uint32>(Base), Options, Document.Parser->NodeBuffers, Document.Nodes, Document.RepeatedKeys);
		const bool bRead = Reader.Read(End);
		Document.bStoppedEarly = Reader.StoppedEarly();
		if (!bRead)
			return Fail(Base + Reader.GetFaultOffset(), Reader.GetFault(), Reader.GetFaultRule());
		Document.Error = FJsonError();
		return true;
	}

	/** Called while nothing in them is needed. */
	void DropLargeBuffers()
	{
		if (Document.GetMemory() <= MaxKeptBytes)
			return;
		Document.Nodes = std::vector<FJsonNode>();
		Document.RepeatedKeys = std::vector<uint32>();
		Document.Parser = nullptr;
	}

	bool Fail(std::size_t Offset, const std::string& Text, const char* Rule = "json-syntax")
	{
		Document.Nodes.clear();
		if (Document.GetMemory() > MaxKeptBytes)
			Document.Nodes.shrink_to_fit();
		Document.RepeatedKeys.clear();
		Document.bStoppedEarly = false;
		Document.Error.Rule = Rule;
		Document.Error.Offset = static_cast<int64>(Offset);
		Document.Locate(static_cast<uint32>(Offset), Document.Error.Line, Document.Error.Column);
		Document.Error.Text = FString(Text);
		return false;
	}
};

FJsonDocument::FJsonDocument() = default;
FJsonDocument::~FJsonDocument() = default;
FJsonDocument::FJsonDocument(FJsonDocument&&) noexcept = default;
FJsonDocument& FJsonDocument::operator=(FJsonDocument&&) noexcept = default;

bool FJsonDocument::Parse(std::string_view Text, const FJsonReadOptions& Options)
{
	return FJsonDocumentReader{*this, Options, FJsonDocumentReader::EInput::CopyFirst}.Read(Text);
}

bool FJsonDocument::ParseInPlace(char* Data, std::size_t Size, std::size_t Capacity, const FJsonReadOptions& Options)
{
	checkf(Capacity >= Size && Capacity - Size >= GetPadding(), "the buffer has no room for the padding");
	return FJsonDocumentReader{*this, Options, FJsonDocumentReader::EInput::KeepInPlace}.Read({Data, Size});
}

std::size_t FJsonDocument::GetPadding()
{
	return FJsonTokenFinder::GetPadding();
}

std::size_t FJsonDocument::GetMemory() const
{
	std::size_t NumBytes = Nodes.capacity() * sizeof(FJsonNode) + RepeatedKeys.capacity() * sizeof(uint32);
	if (!Parser)
		return NumBytes;
	NumBytes += Parser->TokenFinder.GetNumBytes();
	NumBytes += Parser->SlowTokens.capacity() * sizeof(uint32) + Parser->CopyCapacity;
	return NumBytes + Parser->NodeBuffers.UnescapedCapacity + Parser->NodeBuffers.Keys.GetNumBytes();
}

void FJsonDocument::Locate(uint32 Offset, int32& Line, int32& Column) const
{
	const std::size_t Base = SizeOfMark(Source);
	const JsonText::FPlace Place = JsonText::Locate(Source.substr(Base), std::max<std::size_t>(Offset, Base) - Base);
	Line = Place.Line;
	Column = Place.Column;
}

FJsonRef FJsonRef::Find(std::string_view Key) const
{
	FJsonRef Found;
	if (!IsObject())
		return Found;
	for (const FJsonRef Member : *this)
	{
		if (Member.Key() == Key)
			Found = Member;
	}
	return Found;
}
