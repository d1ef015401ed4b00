#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"

#include <string>

/** Texts of the messages, with " | " between them. */
inline std::string RenderMessages(const Orivane::FToolResult& Result)
{
	std::string Text;
	for (const Orivane::FToolMessage& Message : Result.GetMessages())
		Text += (Text.empty() ? "" : " | ") + Message.Text.ToStdString();
	return Text;
}

/** "more match [max_nodes=1]", a line each. */
inline std::string RenderRemarks(const Orivane::FToolResult& Result)
{
	std::string Text;
	for (const Orivane::FToolRemark& Remark : Result.GetRemarks())
	{
		Text += Remark.Text.ToStdString();
		for (const FString& Name : Remark.Names)
			Text += " " + Name.ToStdString();
		Text += (Remark.Argument.IsEmpty() ? "" : " [" + Remark.Argument + "=" + Remark.Value + "]").ToStdString() + "\n";
	}
	return Text;
}

/** Everything that the result holds but remarks, a line each: messages behind the number of their type, then payloads. */
inline std::string RenderResult(const Orivane::FToolResult& Result)
{
	std::string Text;
	for (const Orivane::FToolMessage& Message : Result.GetMessages())
		Text += std::to_string(static_cast<int>(Message.Type)) + " " + Message.Text.ToStdString() + "\n";
	for (const auto& [Key, Payload] : Result.GetData())
	{
		const auto* const Object = std::get_if<TSharedPtr<FJsonObject>>(&Payload);
		Text += Key.ToStdString() + "=" + (Object ? Json::Write(**Object) : std::get<FString>(Payload)).ToStdString() + "\n";
	}
	return Text;
}
