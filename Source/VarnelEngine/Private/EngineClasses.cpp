#include "Engine/EngineClasses.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "Engine/BehaviorTree.h"
#include "Engine/Blackboard.h"
#include "Engine/DataAsset.h"
#include "Engine/DataTable.h"
#include "Engine/EnvQuery.h"
#include "Engine/Material.h"
#include "Engine/Niagara.h"
#include "Engine/UserDefinedEnum.h"
#include "Engine/UserDefinedStruct.h"
#include "Engine/WidgetBlueprint.h"

namespace
{
constexpr UClass* (*NativeClasses[])() = {
	UAnimBlueprint::StaticClass,
	UBehaviorTree::StaticClass,
	UBlackboardData::StaticClass,
	UBlackboardKeyType::StaticClass,
	UBlueprint::StaticClass,
	UBTAuxiliaryNode::StaticClass,
	UBTCompositeNode::StaticClass,
	UBTDecorator::StaticClass,
	UBTNode::StaticClass,
	UBTService::StaticClass,
	UBTTask_MoveTo::StaticClass,
	UBTTask_RunBehavior::StaticClass,
	UBTTaskNode::StaticClass,
	UDataAsset::StaticClass,
	UDataTable::StaticClass,
	UEnvQuery::StaticClass,
	UEnvQueryGenerator::StaticClass,
	UEnvQueryOption::StaticClass,
	UEnvQueryTest::StaticClass,
	UInputAction::StaticClass,
	UInputMappingContext::StaticClass,
	UMaterial::StaticClass,
	UMaterialFunctionInterface::StaticClass,
	UMaterialInstanceConstant::StaticClass,
	UNiagaraEmitter::StaticClass,
	UNiagaraRendererProperties::StaticClass,
	UNiagaraSystem::StaticClass,
	UUserDefinedEnum::StaticClass,
	UUserDefinedStruct::StaticClass,
	UWidget::StaticClass,
	UWidgetAnimation::StaticClass,
	UWidgetBlueprint::StaticClass,
	UWidgetTree::StaticClass,
};

struct FPlainClass
{
	const char* Path;
	const char* Parent;
};

/** Classes of which nothing but the name and the parent is ever asked; parents first. */
constexpr FPlainClass PlainClasses[] = {
	{"/Script/Engine.Actor", "/Script/CoreObject.Object"},
	{"/Script/Engine.ActorComponent", "/Script/CoreObject.Object"},
	{"/Script/Engine.AnimInstance", "/Script/CoreObject.Object"},
	{"/Script/Engine.AnimSequence", "/Script/CoreObject.Object"},
	{"/Script/Engine.SkeletalMesh", "/Script/CoreObject.Object"},
	{"/Script/Engine.SoundWave", "/Script/CoreObject.Object"},
	{"/Script/Engine.StateTree", "/Script/CoreObject.Object"},
	{"/Script/Engine.StaticMesh", "/Script/CoreObject.Object"},
	{"/Script/Engine.Texture2D", "/Script/CoreObject.Object"},
	{"/Script/Engine.World", "/Script/CoreObject.Object"},

	{"/Script/Engine.Controller", "/Script/Engine.Actor"},
	{"/Script/Engine.GameModeBase", "/Script/Engine.Actor"},
	{"/Script/Engine.Pawn", "/Script/Engine.Actor"},
	{"/Script/Engine.Character", "/Script/Engine.Pawn"},
	{"/Script/Engine.SceneComponent", "/Script/Engine.ActorComponent"},

	{"/Script/Engine.PrimaryDataAsset", "/Script/Engine.DataAsset"},
	{"/Script/Engine.MaterialFunction", "/Script/Engine.MaterialFunctionInterface"},

	{"/Script/Engine.BTComposite_Selector", "/Script/Engine.BTCompositeNode"},
	{"/Script/Engine.BTComposite_Sequence", "/Script/Engine.BTCompositeNode"},
	{"/Script/Engine.BTDecorator_Blackboard", "/Script/Engine.BTDecorator"},
	{"/Script/Engine.BTTask_Wait", "/Script/Engine.BTTaskNode"},

	{"/Script/Engine.BlackboardKeyType_Bool", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Class", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Enum", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Float", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Int", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Name", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Object", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Rotator", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_String", "/Script/Engine.BlackboardKeyType"},
	{"/Script/Engine.BlackboardKeyType_Vector", "/Script/Engine.BlackboardKeyType"},

	{"/Script/Engine.Border", "/Script/Engine.Widget"},
	{"/Script/Engine.Button", "/Script/Engine.Widget"},
	{"/Script/Engine.CanvasPanel", "/Script/Engine.Widget"},
	{"/Script/Engine.HorizontalBox", "/Script/Engine.Widget"},
	{"/Script/Engine.Image", "/Script/Engine.Widget"},
	{"/Script/Engine.ListView", "/Script/Engine.Widget"},
	{"/Script/Engine.Overlay", "/Script/Engine.Widget"},
	{"/Script/Engine.ProgressBar", "/Script/Engine.Widget"},
	{"/Script/Engine.TextBlock", "/Script/Engine.Widget"},
	{"/Script/Engine.UserWidget", "/Script/Engine.Widget"},
	{"/Script/Engine.VerticalBox", "/Script/Engine.Widget"},
};
}

void RegisterEngineClasses()
{
	for (UClass* (*const StaticClass)() : NativeClasses)
		StaticClass();
	for (const FPlainClass& Plain : PlainClasses)
	{
		UClass* const Parent = FindClass(Plain.Parent);
		checkf(Parent, "parents stand before their children");
		RegisterPlainClass(Plain.Path, Parent);
	}
}
