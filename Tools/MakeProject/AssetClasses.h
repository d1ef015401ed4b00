#pragma once

#include "Types.h"

#include <bitset>
#include <span>
#include <string_view>

/**
 * The classes of asset that a project holds. Users stand before what they use: a package of one class refers to packages
 * of its own class that come later and to packages of later classes, so that cycles arise only where they are wanted.
 */
enum class EAssetClass : uint8
{
	World,
	WidgetBlueprint,
	Blueprint,
	AnimBlueprint,
	BehaviorTree,
	StateTree,
	EnvQuery,
	BlackboardData,
	NiagaraSystem,
	DataTable,
	InputMappingContext,
	InputAction,
	DataAsset,
	AnimSequence,
	SkeletalMesh,
	StaticMesh,
	MaterialInstanceConstant,
	Material,
	MaterialFunction,
	Texture2D,
	SoundWave,
	UserDefinedStruct,
	UserDefinedEnum,
	Count
};

constexpr uint32 NumAssetClasses = static_cast<uint32>(EAssetClass::Count);

/** What --families selects. Text stands for the text files; Other for the classes that only the registry and the graph know. */
enum class EFamily : uint8
{
	Blueprint,
	Text,
	BehaviorTree,
	Blackboard,
	Enum,
	Struct,
	DataAsset,
	DataTable,
	EnvQuery,
	NiagaraSystem,
	Material,
	Other,
	Count
};

using FFamilySet = std::bitset<static_cast<std::size_t>(EFamily::Count)>;

/** The folder inside a feature's folder that holds assets of a kind. Unsorted: right in the feature's folder. */
enum class EFolderKind : uint8
{
	Unsorted,
	Blueprints,
	Animations,
	Audio,
	Data,
	Effects,
	Logic,
	Materials,
	Meshes,
	Textures,
	Count
};

constexpr uint32 NumFolderKinds = static_cast<uint32>(EFolderKind::Count);

enum class EArea : uint8;

/** How the words of a name are chosen. */
enum class ENameStyle : uint8
{
	Thing,
	Action,
	Texture,
	Record
};

struct FAssetClassRow
{
	std::string_view Name;	 // short class name; the class path is /Script/Engine.Name, for DataAsset a declared subclass
	std::string_view Prefix; // of the asset's name
	EFamily Family;
	uint32 PerThousand; // share of all packages when every family is wanted
	uint32 MeanLinks;	// outgoing links at the default density
	EFolderKind Kind;
	EArea Area; // where most of them live
	ENameStyle NameStyle;
	std::span<const EAssetClass> Uses; // what further links lead to, each entry equally often
};

const FAssetClassRow& RowOf(EAssetClass Class);

/** Names in the order of EFamily. */
std::span<const std::string_view> FamilyNames();

std::string_view FolderNameOf(EFolderKind Kind);
