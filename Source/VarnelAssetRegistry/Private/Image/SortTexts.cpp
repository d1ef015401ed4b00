#include "Image/SortTexts.h"

#include <algorithm>
#include <span>

namespace
{
struct FSortItem
{
	uint64 Piece = 0; // eight bytes of the text, the first one highest, filled up with zeros
	uint32 Text = 0;
	uint32 NumBytes = 0; // of these eight, how many the text has; tells a zero byte from the text's end
};

bool IsLess(const FSortItem& A, const FSortItem& B)
{
	if (A.Piece != B.Piece)
		return A.Piece < B.Piece;
	return A.NumBytes != B.NumBytes ? A.NumBytes < B.NumBytes : A.Text < B.Text;
}

bool IsSamePiece(const FSortItem& A, const FSortItem& B)
{
	return A.Piece == B.Piece && A.NumBytes == B.NumBytes;
}

void TakePiece(FSortItem& Item, std::string_view Text, std::size_t Depth)
{
	Item.NumBytes = static_cast<uint32>(std::min(Text.size() - Depth, sizeof(Item.Piece)));
	Item.Piece = 0;
	for (std::size_t Byte = 0; Byte < sizeof(Item.Piece); ++Byte)
		Item.Piece = Item.Piece << 8 | (Byte < Item.NumBytes ? static_cast<uint8>(Text[Depth + Byte]) : 0u);
}

/** Items whose texts are equal before Depth. */
struct FPending
{
	std::span<FSortItem> Items;
	std::size_t Depth = 0;
};

/** Sorts by the next eight bytes and leaves the groups that these do not tell apart for later. */
void SortByPiece(const FPending& Group, const std::vector<std::string_view>& Texts, std::vector<FPending>& Pending)
{
	for (FSortItem& Item : Group.Items)
		TakePiece(Item, Texts[Item.Text], Group.Depth);
	if (!std::is_sorted(Group.Items.begin(), Group.Items.end(), IsLess))
		std::sort(Group.Items.begin(), Group.Items.end(), IsLess);
	for (std::size_t Begin = 0, End = 0; Begin < Group.Items.size(); Begin = End)
	{
		while (End < Group.Items.size() && IsSamePiece(Group.Items[Begin], Group.Items[End]))
			++End;
		if (End - Begin > 1 && Group.Items[Begin].NumBytes == sizeof(uint64))
			Pending.push_back({Group.Items.subspan(Begin, End - Begin), Group.Depth + sizeof(uint64)});
	}
}
}

std::vector<uint32> SortTexts(const std::vector<std::string_view>& Texts)
{
	std::vector<FSortItem> Items(Texts.size());
	for (uint32 Text = 0; Text < Items.size(); ++Text)
		Items[Text].Text = Text;
	std::vector<FPending> Pending = {{Items, 0}};
	while (!Pending.empty())
	{
		const FPending Group = Pending.back();
		Pending.pop_back();
		SortByPiece(Group, Texts, Pending);
	}
	std::vector<uint32> Order(Items.size());
	std::transform(Items.begin(), Items.end(), Order.begin(), [](const FSortItem& Item) { return Item.Text; });
	return Order;
}
