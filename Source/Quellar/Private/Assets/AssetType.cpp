#include "Assets/AssetTypeGroup.h"
#include "Quellar/Search/AssetSearchService.h"

FString AssetTypeFromClassName(FName ClassName)
{
	struct FRow
	{
		FName ClassName;
		const char* Type;
	};
	static const FRow Rows[] = {
		{"Blueprint", "Blueprint"},
		{"WidgetBlueprint", "WidgetBlueprint"},
		{"AnimBlueprint", "AnimBlueprint"},
		{"BehaviorTree", "BehaviorTree"},
		{"BlackboardData", "Blackboard"},
		{"DataAsset", "DataAsset"},
		{"PrimaryDataAsset", "DataAsset"},
		{"DataTable", "DataTable"},
		{"UserDefinedStruct", "Struct"},
		{"UserDefinedEnum", "Enum"},
		{"Material", "Material"},
		{"MaterialInstance", "Material"},
		{"MaterialInstanceConstant", "Material"},
		{"MaterialFunction", "Material"},
		{"NiagaraSystem", "NiagaraSystem"},
		{"EnvQuery", "EnvQuery"},
		{"World", "World"},
		{"StateTree", "StateTree"},
		{"TextFile", "Text"},
	};
	for (const FRow& Row : Rows)
	{
		if (Row.ClassName == ClassName)
			return Row.Type;
	}
	return "uasset";
}

FString GetAssetTypeGroup(const FString& AssetClass)
{
	struct FRow
	{
		const char* AssetClass;
		const char* Key;
	};
	static constexpr FRow Rows[] = {
		{"WidgetBlueprint", "Blueprint"},
		{"AnimBlueprint", "Blueprint"},
		{"UserDefinedEnum", "Enum"},
		{"UserDefinedStruct", "Struct"},
		{"TextFile", "Text"},
		{"MaterialInstance", "Material"},
		{"MaterialFunction", "Material"},
	};
	for (const FRow& Row : Rows)
	{
		if (AssetClass.Equals(Row.AssetClass, ESearchCase::CaseSensitive))
			return Row.Key;
	}
	return AssetClass;
}
