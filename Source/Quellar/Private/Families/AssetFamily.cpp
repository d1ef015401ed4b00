#include "Quellar/Families/AssetFamily.h"

#include "Engine/BehaviorTree.h"
#include "Engine/Blackboard.h"
#include "Engine/Blueprint.h"
#include "Engine/DataAsset.h"
#include "Engine/DataTable.h"
#include "Engine/EnvQuery.h"
#include "Engine/Material.h"
#include "Engine/Niagara.h"
#include "Engine/UserDefinedEnum.h"
#include "Engine/UserDefinedStruct.h"

#include <algorithm>
#include <vector>

// Each in a file of its own, which says what it reports. They are called only through their rows.
FAssetFamily::FSearch SearchBlueprints, SearchTextFiles, SearchBehaviorTrees, SearchBlackboards, SearchEnums, SearchStructs,
	SearchDataAssets, SearchDataTables, SearchEnvQueries, SearchNiagaraSystems, SearchMaterials;

namespace
{
constexpr const char* ColorOfOthers = "#cfd4da";

TArray<FAssetFamily> MakeFamilies()
{
	return {
		{.Name = "Blueprint",
			.Search = SearchBlueprints,
			.Classes = {UBlueprint::StaticClass},
			.Types = {{"Blueprint", "#9cc4f5", {"Blueprint"}}, {"WidgetBlueprint", "#b7b3f2", {"WidgetBlueprint"}},
				{"AnimBlueprint", "#8fd8e8", {"AnimBlueprint"}}},
			.GroupedClasses = {"WidgetBlueprint", "AnimBlueprint"},
			.Command = {.Name = "Orivane.BlueprintSearch",
				.File = "blueprint_search.json",
				.Help = "Search Blueprints by term/path/kinds (summary=true|false). Args: term=, path=, "
						"kinds=Var,Graph,Node,Pin,Comment, exact=true|false, max=200, summary=true"},
			.DocumentEntry = {.bCounts = true}},
		{.Name = "Text",
			.Search = SearchTextFiles,
			.Types = {{"Text", "#dcd3c4", {"TextFile"}}},
			.GroupedClasses = {"TextFile"},
			.Command = {.Name = "Orivane.TextSearch",
				.File = "text_search.json",
				.Help = "Search whitelisted text files. Args: term=, path=, exts=cpp,h,ini, exact=true|false, max=, "
						"summary=true|false",
				.ExtraWords = {"exts="}}},
		{.Name = "BehaviorTree",
			.Search = SearchBehaviorTrees,
			.Classes = {UBehaviorTree::StaticClass},
			.Types = {{"BehaviorTree", "#f2b8a0", {"BehaviorTree"}}},
			.Command = {.Name = "Orivane.BehaviorTreeSearch",
				.File = "behavior_tree_search.json",
				.Help = "Search Behavior Trees. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"},
			.DocumentEntry = {.bCounts = true}},
		{.Name = "Blackboard",
			.Search = SearchBlackboards,
			.Classes = {UBlackboardData::StaticClass},
			.Types = {{"Blackboard", "#f5cf9b", {"BlackboardData"}}},
			.Command = {.Name = "Orivane.BlackboardSearch",
				.File = "blackboard_search.json",
				.Help = "Search Blackboards. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"}},
		{.Name = "Enum",
			.Search = SearchEnums,
			.Classes = {UUserDefinedEnum::StaticClass},
			.Types = {{"Enum", "#efe08f", {"UserDefinedEnum"}}},
			.GroupedClasses = {"UserDefinedEnum"},
			.Command = {.Name = "Orivane.EnumSearch",
				.File = "enum_search.json",
				.Help = "Search UserDefinedEnums. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"},
			.DocumentEntry = {.bContainer = false}},
		{.Name = "Struct",
			.Search = SearchStructs,
			.Classes = {UUserDefinedStruct::StaticClass},
			.Types = {{"Struct", "#d8dc8c", {"UserDefinedStruct"}}},
			.GroupedClasses = {"UserDefinedStruct"},
			.Command = {.Name = "Orivane.StructSearch",
				.File = "struct_search.json",
				.Help = "Search UserDefinedStructs. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"},
			.DocumentEntry = {.bContainer = false}},
		{.Name = "DataAsset",
			.Search = SearchDataAssets,
			.Classes = {UDataAsset::StaticClass},
			.Types = {{"DataAsset", "#a8dcb0", {"DataAsset", "PrimaryDataAsset"}}},
			.Command = {.Name = "Orivane.DataAssetSearch",
				.File = "dataasset_search.json",
				.Help = "Search DataAssets. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"},
			.DocumentEntry = {.bContainer = false}},
		{.Name = "DataTable",
			.Search = SearchDataTables,
			.Classes = {UDataTable::StaticClass},
			.Types = {{"DataTable", "#c5e29a", {"DataTable"}}},
			.Command = {.Name = "Orivane.DataTableSearch",
				.File = "datatable_search.json",
				.Help = "Search DataTables (schema-only). Args: term=, path=, exact=true|false, max=, summary=true|false",
				.ExtraWords = {}}},
		{.Name = "EnvQuery",
			.Search = SearchEnvQueries,
			.Classes = {UEnvQuery::StaticClass},
			.Types = {{"EnvQuery", "#e8b4d4", {"EnvQuery"}}},
			.Command = {.Name = "Orivane.EnvQuerySearch",
				.File = "envquery_search.json",
				.Help = "Search EnvQueries. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"}},
		{.Name = "NiagaraSystem",
			.Search = SearchNiagaraSystems,
			.Classes = {UNiagaraSystem::StaticClass},
			.Types = {{"NiagaraSystem", "#f3b0c9", {"NiagaraSystem"}}},
			.Command = {.Name = "Orivane.NiagaraSearch",
				.File = "niagara_search.json",
				.Help = "Search Niagara Systems. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false"}},
		{.Name = "Material",
			.Search = SearchMaterials,
			.Classes = {UMaterial::StaticClass, UMaterialInstanceConstant::StaticClass, UMaterialFunctionInterface::StaticClass},
			.Types = {{"Material", "#9fdcc8", {"Material", "MaterialInstance", "MaterialInstanceConstant", "MaterialFunction"}}},
			.GroupedClasses = {"MaterialInstance", "MaterialFunction"},
			.Command = {.Name = "Orivane.MaterialSearch",
				.File = "material_search.json",
				.Help = "Search Materials, Material Instances, and Material Functions. Args: term=, path=, kinds=, "
						"exact=true|false, max=, summary=true|false"}},
	};
}

/** Types that the graph shows and no family searches. */
const TArray<FAssetFamily::FType>& GetTypesWithoutFamily()
{
	static const TArray<FAssetFamily::FType> Types = {
		{"World", "#f0a3ae", {"World"}},
		{"StateTree", "#e3b3ef", {"StateTree"}},
	};
	return Types;
}

template <class TVisit>
void ForEachType(TVisit&& Visit)
{
	for (const FAssetFamily& Family : GetAssetFamilies())
	{
		for (const FAssetFamily::FType& Type : Family.Types)
			Visit(Type);
	}
	for (const FAssetFamily::FType& Type : GetTypesWithoutFamily())
		Visit(Type);
}

struct FClassType
{
	FName ClassName;
	const char* Type;
};

/** The types of all classes side by side: walks over graphs ask for every package they meet. */
std::vector<FClassType> ListClassTypes()
{
	std::vector<FClassType> ClassTypes;
	ForEachType(
		[&](const FAssetFamily::FType& Type)
		{
			for (const FName ClassName : Type.ClassNames)
				ClassTypes.push_back({ClassName, Type.Name});
		});
	return ClassTypes;
}
}

const TArray<FAssetFamily>& GetAssetFamilies()
{
	static const TArray<FAssetFamily> Families = MakeFamilies();
	return Families;
}

const FAssetFamily* FindAssetFamily(const FString& Name)
{
	const TArray<FAssetFamily>& Families = GetAssetFamilies();
	const auto Found = std::find_if(Families.begin(), Families.end(),
		[&](const FAssetFamily& Family) { return Name.Equals(Family.Name, ESearchCase::CaseSensitive); });
	return Found == Families.end() ? nullptr : &*Found;
}

TArray<FString> GetAssetFamilyNames()
{
	TArray<FString> Names;
	for (const FAssetFamily& Family : GetAssetFamilies())
		Names.Add(Family.Name);
	return Names;
}

FString AssetTypeFromClassName(FName ClassName)
{
	static const std::vector<FClassType> ClassTypes = ListClassTypes();
	for (const FClassType& Each : ClassTypes)
	{
		if (Each.ClassName == ClassName)
			return Each.Type;
	}
	return "uasset";
}

FString GetAssetTypeColor(const FString& AssetType)
{
	FString Color = ColorOfOthers;
	ForEachType(
		[&](const FAssetFamily::FType& Type)
		{
			if (AssetType == Type.Name)
				Color = Type.Color;
		});
	return Color;
}

FString GetAssetTypeGroup(const FString& AssetClass)
{
	for (const FAssetFamily& Family : GetAssetFamilies())
	{
		for (const char* Grouped : Family.GroupedClasses)
		{
			if (AssetClass.Equals(Grouped, ESearchCase::CaseSensitive))
				return Family.Name;
		}
	}
	return AssetClass;
}
