#pragma once

#include "Core/Json/Json.h"

#include <memory>
#include <string_view>
#include <vector>

/** Type of a node; numbers and truth values are told apart as they are stored. */
enum class EJsonNode : uint8
{
	Null,
	False,
	True,
	Integer, // fits int64
	Double,	 // every other number; beyond the range of double it is the largest finite one
	String,
	Array,
	Object,
};

/** Flat node: containers are followed by their children, Next leads over them. */
struct FJsonNode
{
	EJsonNode Type = EJsonNode::Null;
	uint32 Next = 0;		// index of the node after this one and its children
	uint32 Offset = 0;		// of the value's first byte in the file
	uint32 KeyOffset = 0;	// of the key's quote, members of objects only
	uint32 NumChildren = 0; // of arrays and objects
	std::string_view Key;	// unescaped, members of objects only
	std::string_view Text;	// unescaped, strings only
	union
	{
		int64 Integer = 0;
		double Double;
	};
};

/** Limits of a reading, and where it ends. */
struct FJsonReadOptions
{
	int32 MaxDepth = Json::MaxMessageDepth;
	int64 MaxValues = Json::MaxDocumentValues; // a text with more of them is refused
	/**
	 * When set, reading of the root object ends before the member of that name: what follows is not kept, is mostly not even
	 * looked at, and need not be JSON.
	 */
	std::string_view StopBefore;
};

class FJsonDocument;

/**
 * A value in a document; cheap to copy, valid until the document is parsed again or destroyed. An empty reference reads as null,
 * so that Find may be chained.
 */
class FJsonRef
{
public:
	FJsonRef() = default;
	FJsonRef(const FJsonDocument& InDocument, uint32 InIndex) : Document(&InDocument), Index(InIndex) {}

	explicit operator bool() const { return Document != nullptr; }
	EJsonNode Type() const { return Node().Type; }
	bool IsString() const { return Type() == EJsonNode::String; }
	bool IsArray() const { return Type() == EJsonNode::Array; }
	bool IsObject() const { return Type() == EJsonNode::Object; }
	bool IsNull() const { return Type() == EJsonNode::Null; }
	bool IsBool() const { return Type() == EJsonNode::True || Type() == EJsonNode::False; }
	bool IsNumber() const { return Type() == EJsonNode::Integer || Type() == EJsonNode::Double; }
	std::string_view Text() const { return Node().Text; }
	bool Bool() const { return Type() == EJsonNode::True; }
	int64 Integer() const { return Node().Integer; }
	double Number() const { return Type() == EJsonNode::Integer ? static_cast<double>(Node().Integer) : Node().Double; }
	std::string_view Key() const { return Node().Key; }
	uint32 KeyOffset() const { return Node().KeyOffset; }
	uint32 Offset() const { return Node().Offset; }
	int32 Num() const { return static_cast<int32>(Node().NumChildren); }
	/** The member with this exact key (the last one, where it is repeated), or an empty reference. */
	FJsonRef Find(std::string_view Key) const;

	/** Children of an array or object, in file order; repeated keys all appear. */
	class FIterator
	{
	public:
		FIterator(const FJsonDocument* InDocument, uint32 InIndex) : Document(InDocument), Index(InIndex) {}
		FJsonRef operator*() const { return FJsonRef(*Document, Index); }
		FIterator& operator++();
		bool operator!=(const FIterator& Other) const { return Index != Other.Index; }

	private:
		const FJsonDocument* Document;
		uint32 Index;
	};
	FIterator begin() const;
	FIterator end() const;

private:
	const FJsonNode& Node() const;
	const FJsonDocument* Document = nullptr;
	uint32 Index = 0;
};

/**
 * Parsed JSON text as a flat list of nodes with file offsets, for project files. Made to be reused: parsing again keeps the
 * buffers, unless they are much larger than the next text needs. The text is kept until the next parse. One thread at a time.
 */
class FJsonDocument
{
public:
	FJsonDocument(); // buffers come with the first parse
	~FJsonDocument();
	FJsonDocument(FJsonDocument&&) noexcept;
	FJsonDocument& operator=(FJsonDocument&&) noexcept;

	/**
	 * Copies Text, which must not be this document's own. A byte-order mark is skipped (offsets count it, columns do not).
	 * Ill-formed UTF-8 is repaired (WasRepaired), and offsets then count the repaired text. False, and a document without nodes:
	 * see GetError.
	 */
	bool Parse(std::string_view Text, const FJsonReadOptions& Options = {});
	/**
	 * Parses a buffer without changing or copying it; it has Capacity bytes, of which at least GetPadding() follow Size
	 * with any content, and outlives the document's use.
	 */
	bool ParseInPlace(char* Data, std::size_t Size, std::size_t Capacity, const FJsonReadOptions& Options = {});
	static std::size_t GetPadding();

	FJsonRef Root() const { return Nodes.empty() ? FJsonRef() : FJsonRef(*this, 0); }
	const FJsonError& GetError() const { return Error; }
	bool WasRepaired() const { return bRepaired; }
	/** Reading ended before FJsonReadOptions::StopBefore. */
	bool StoppedEarly() const { return bStoppedEarly; }
	/** Read so far; keys do not count. */
	int64 NumValues() const { return static_cast<int64>(Nodes.size()); }
	/** Bytes of all buffers. */
	std::size_t GetMemory() const;
	/** Offsets of keys that an object holds more than once (second and later places). */
	const std::vector<uint32>& GetRepeatedKeys() const { return RepeatedKeys; }
	/** Line and column (from 1, column in code points) of a byte offset. Linear in the text. */
	void Locate(uint32 Offset, int32& Line, int32& Column) const;

private:
	friend class FJsonRef;
	friend struct FJsonDocumentReader;
	struct FParser; // the third-party parser and its buffers
	std::unique_ptr<FParser> Parser;
	std::vector<FJsonNode> Nodes;
	std::vector<uint32> RepeatedKeys;
	std::string_view Source;
	FJsonError Error;
	bool bRepaired = false;
	bool bStoppedEarly = false;
};

inline constexpr FJsonNode MissingJsonNode{EJsonNode::Null, 1, 0, 0, 0, {}, {}, {0}};

inline const FJsonNode& FJsonRef::Node() const
{
	return Document ? Document->Nodes[Index] : MissingJsonNode;
}
inline FJsonRef::FIterator FJsonRef::begin() const
{
	return FIterator(Document, Index + 1);
}
inline FJsonRef::FIterator FJsonRef::end() const
{
	return FIterator(Document, Node().Next);
}
inline FJsonRef::FIterator& FJsonRef::FIterator::operator++()
{
	Index = Document->Nodes[Index].Next;
	return *this;
}
