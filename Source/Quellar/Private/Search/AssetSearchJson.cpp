#include "Search/AssetSearchJson.h"

#include "CoreObject/Objects/PackageName.h"

namespace
{
TSharedPtr<FJsonObject> MakeHitJson(const FAssetHit& Hit)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("kind", Hit.Kind);
	Json->SetStringField("name", FPackageName::ObjectPathToPackageName(Hit.Name));
	Json->SetStringField("container", FPackageName::ObjectPathToPackageName(Hit.Container));
	Json->SetNumberField("count", Hit.Count);
	if (Hit.Anchor)
		Json->SetObjectField("anchor", Hit.Anchor);
	return Json;
}

TSharedPtr<FJsonObject> MakeAssetJson(const FAssetResult& Asset)
{
	FJsonArray Hits;
	for (const FAssetHit& Hit : Asset.Hits)
		Hits.Add(MakeHitJson(Hit));
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("asset", FPackageName::ObjectPathToPackageName(Asset.AssetPath));
	Json->SetStringField("class", Asset.AssetClass);
	Json->SetBoolField("truncated", Asset.bTruncated);
	Json->SetArrayField("hits", std::move(Hits));
	return Json;
}
}

TSharedPtr<FJsonObject> MakeAssetSearchJson(const FAssetSearchResult& Result)
{
	FJsonArray Assets;
	for (const FAssetResult& Asset : Result.Results)
		Assets.Add(MakeAssetJson(Asset));
	auto Json = MakeShared<FJsonObject>();
	Json->SetArrayField("assets", std::move(Assets));
	Json->SetBoolField("truncated", Result.bTruncated);
	return Json;
}
