#pragma once

#include "Core/Base/Types.h"

#include <string>
#include <string_view>

/** How the text of a file is encoded, as its byte-order mark says. */
enum class ETextEncoding : uint8
{
	Utf8, // also without a mark
	Utf16Little,
	Utf16Big,
};

/** Drops the mark at the start of a file, should there be one. */
ETextEncoding TakeByteOrderMark(std::string_view& Bytes);

/**
 * Decodes the bytes of a text file piece by piece, as FFileHelper::DecodeText does with all of them at once: what is appended for
 * the pieces adds up to the same text. For one file; not for several threads at a time.
 */
class FTextDecoder
{
public:
	/** Appends the text of the next bytes; a character that the end of the piece cuts waits for the next one. */
	void Append(std::string_view Piece, std::string& Out);
	/** No more bytes come: appends what a cut character leaves. Afterwards the decoder is ready for another file. */
	void Finish(std::string& Out);

private:
	void Decode(std::string_view Bytes, std::string& Out) const;
	std::size_t CountWhole(std::string_view Bytes) const;

	std::string Rest; // bytes that wait for the next piece
	bool bStarted = false;
	ETextEncoding Encoding = ETextEncoding::Utf8; // once started
};
