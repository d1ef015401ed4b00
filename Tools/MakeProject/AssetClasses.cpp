#include "AssetClasses.h"
#include "FeatureTree.h"

#include <array>

namespace
{
using enum EAssetClass;
using FClassList = std::span<const EAssetClass>;

constexpr std::array UsesOfWorld = {
	StaticMesh, StaticMesh, StaticMesh, Blueprint, Blueprint, MaterialInstanceConstant, SoundWave, NiagaraSystem};
constexpr std::array UsesOfWidget = {
	WidgetBlueprint, Texture2D, Texture2D, Blueprint, Material, SoundWave, UserDefinedEnum, DataTable};
constexpr std::array UsesOfBlueprint = {Blueprint, Blueprint, StaticMesh, StaticMesh, SkeletalMesh, SoundWave, NiagaraSystem,
	DataAsset, DataTable, MaterialInstanceConstant, UserDefinedEnum, UserDefinedStruct, BehaviorTree, AnimSequence,
	WidgetBlueprint, InputAction};
constexpr std::array UsesOfAnimBlueprint = {AnimSequence, AnimSequence, AnimSequence, SkeletalMesh, UserDefinedEnum, SoundWave};
constexpr std::array UsesOfBehavior = {BlackboardData, EnvQuery, BehaviorTree, UserDefinedEnum, DataAsset};
constexpr std::array UsesOfEnvQuery = {DataAsset, UserDefinedEnum};
constexpr std::array UsesOfBlackboard = {BlackboardData, UserDefinedEnum};
constexpr std::array UsesOfEffect = {Material, MaterialInstanceConstant, Texture2D, StaticMesh};
constexpr std::array UsesOfData = {Texture2D, StaticMesh, SoundWave, DataAsset, UserDefinedEnum, UserDefinedStruct};
constexpr std::array UsesOfMapping = {InputAction};
constexpr std::array UsesOfAnimation = {SkeletalMesh, SoundWave};
constexpr std::array UsesOfMesh = {MaterialInstanceConstant, MaterialInstanceConstant, MaterialInstanceConstant, Material};
constexpr std::array UsesOfInstance = {Texture2D, Texture2D, Texture2D, Material, MaterialFunction};
constexpr std::array UsesOfMaterial = {Texture2D, MaterialFunction};
constexpr std::array UsesOfTexture = {Texture2D};
constexpr std::array UsesOfSound = {SoundWave};
constexpr std::array UsesOfStruct = {UserDefinedEnum, UserDefinedStruct};

using Folder = EFolderKind;
using Style = ENameStyle;

constexpr FAssetClassRow Rows[NumAssetClasses] = {
	{"World", "L_", EFamily::Other, 15, 110, Folder::Unsorted, EArea::Maps, Style::Thing, UsesOfWorld},
	{"WidgetBlueprint", "WBP_", EFamily::Blueprint, 14, 22, Folder::Blueprints, EArea::UI, Style::Thing, UsesOfWidget},
	{"Blueprint", "BP_", EFamily::Blueprint, 58, 30, Folder::Blueprints, EArea::Anywhere, Style::Thing, UsesOfBlueprint},
	{"AnimBlueprint", "ABP_", EFamily::Blueprint, 8, 35, Folder::Animations, EArea::Characters, Style::Thing,
		UsesOfAnimBlueprint},
	{"BehaviorTree", "BT_", EFamily::BehaviorTree, 6, 10, Folder::Logic, EArea::AI, Style::Action, UsesOfBehavior},
	{"StateTree", "ST_", EFamily::Other, 3, 12, Folder::Logic, EArea::AI, Style::Action, UsesOfBehavior},
	{"EnvQuery", "EQS_", EFamily::EnvQuery, 4, 2, Folder::Logic, EArea::AI, Style::Action, UsesOfEnvQuery},
	{"BlackboardData", "BB_", EFamily::Blackboard, 3, 1, Folder::Logic, EArea::AI, Style::Thing, UsesOfBlackboard},
	{"NiagaraSystem", "NS_", EFamily::NiagaraSystem, 30, 8, Folder::Effects, EArea::Effects, Style::Action, UsesOfEffect},
	{"DataTable", "DT_", EFamily::DataTable, 10, 15, Folder::Data, EArea::Data, Style::Record, UsesOfData},
	{"InputMappingContext", "IMC_", EFamily::DataAsset, 1, 8, Folder::Data, EArea::Core, Style::Action, UsesOfMapping},
	{"InputAction", "IA_", EFamily::DataAsset, 2, 0, Folder::Data, EArea::Core, Style::Action, {}},
	{"DataAsset", "DA_", EFamily::DataAsset, 17, 9, Folder::Data, EArea::Anywhere, Style::Record, UsesOfData},
	{"AnimSequence", "A_", EFamily::Other, 90, 2, Folder::Animations, EArea::Characters, Style::Action, UsesOfAnimation},
	{"SkeletalMesh", "SK_", EFamily::Other, 15, 7, Folder::Meshes, EArea::Characters, Style::Thing, UsesOfMesh},
	{"StaticMesh", "SM_", EFamily::Other, 235, 4, Folder::Meshes, EArea::Environment, Style::Thing, UsesOfMesh},
	{"MaterialInstanceConstant", "MI_", EFamily::Material, 110, 6, Folder::Materials, EArea::Environment, Style::Thing,
		UsesOfInstance},
	{"Material", "M_", EFamily::Material, 15, 10, Folder::Materials, EArea::Materials, Style::Thing, UsesOfMaterial},
	{"MaterialFunction", "MF_", EFamily::Material, 6, 1, Folder::Materials, EArea::Materials, Style::Action, UsesOfMaterial},
	{"Texture2D", "T_", EFamily::Other, 230, 0, Folder::Textures, EArea::Environment, Style::Texture, UsesOfTexture},
	{"SoundWave", "SW_", EFamily::Other, 110, 0, Folder::Audio, EArea::Audio, Style::Action, UsesOfSound},
	{"UserDefinedStruct", "S_", EFamily::Struct, 10, 2, Folder::Data, EArea::Data, Style::Record, UsesOfStruct},
	{"UserDefinedEnum", "E_", EFamily::Enum, 8, 0, Folder::Data, EArea::Data, Style::Record, {}},
};

constexpr std::string_view Families[] = {"Blueprint", "Text", "BehaviorTree", "Blackboard", "Enum", "Struct", "DataAsset",
	"DataTable", "EnvQuery", "NiagaraSystem", "Material", "Other"};

constexpr std::string_view FolderNames[NumFolderKinds] = {
	"", "Blueprints", "Animations", "Audio", "Data", "Effects", "Logic", "Materials", "Meshes", "Textures"};
}

const FAssetClassRow& RowOf(EAssetClass Class)
{
	return Rows[static_cast<uint32>(Class)];
}

std::span<const std::string_view> FamilyNames()
{
	return Families;
}

std::string_view FolderNameOf(EFolderKind Kind)
{
	return FolderNames[static_cast<uint32>(Kind)];
}
