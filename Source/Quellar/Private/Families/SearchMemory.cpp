#include "Quellar/Families/SearchMemory.h"

#include "Families/AssetTexts.h"
#include "Families/TextStore.h"

namespace
{
int64 Limit = SearchMemory::DefaultLimit;
}

void SearchMemory::SetLimit(int64 MaxBytes)
{
	Limit = MaxBytes;
}

int64 SearchMemory::GetBytes()
{
	return FAssetTexts::GetMemory() + FTextStore::Get().GetMemory();
}

int64 SearchMemory::GetBytesLeft()
{
	return Limit - GetBytes();
}

void SearchMemory::Forget()
{
	FAssetTexts::ForgetAll();
}
