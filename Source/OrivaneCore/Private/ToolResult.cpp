#include "OrivaneCore/ToolResult.h"

namespace Orivane
{
FToolResult& FToolResult::AddErrorMessage(const FString& Text)
{
	Messages.Add({EToolMessage::Error, Text});
	return *this;
}

FToolResult& FToolResult::AddWarningMessage(const FString& Text)
{
	Messages.Add({EToolMessage::Warning, Text});
	return *this;
}

FToolResult& FToolResult::AddSuccessMessage(const FString& Text)
{
	Messages.Add({EToolMessage::Success, Text});
	return *this;
}

FToolResult& FToolResult::SetData(const FString& Key, const FString& Value)
{
	Data.Add(Key, Value);
	return *this;
}

FToolResult& FToolResult::SetData(const FString& Key, const TSharedPtr<FJsonObject>& Value)
{
	Data.Add(Key, Value);
	return *this;
}

FToolResult& FToolResult::AddRemark(FToolRemark Remark)
{
	Remarks.Add(std::move(Remark));
	return *this;
}

FToolResult& FToolResult::AddPlace(FToolPlace Place)
{
	Places.Add(std::move(Place));
	return *this;
}

bool FToolResult::HasErrors() const
{
	return Messages.ContainsByPredicate([](const FToolMessage& Message) { return Message.Type == EToolMessage::Error; });
}
}
