#include "Engine/WidgetBlueprint.h"

#include "CoreObject/Reflection/NativeClass.h"

UClass* UWidget::StaticClass()
{
	static UClass* const Class = TClassBuilder<UWidget>("/Script/Engine.Widget", UObject::StaticClass()).Build();
	return Class;
}

UClass* UWidgetAnimation::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UWidgetAnimation>("/Script/Engine.WidgetAnimation", UObject::StaticClass()).Build();
	return Class;
}

UClass* UWidgetTree::StaticClass()
{
	static UClass* const Class = TClassBuilder<UWidgetTree>("/Script/Engine.WidgetTree", UObject::StaticClass())
									 .Member("RootWidget", &UWidgetTree::RootWidget)
									 .Build();
	return Class;
}

void UWidgetTree::GetAllWidgets(TArray<UWidget*>& Widgets) const
{
	TArray<UObject*> Objects;
	GetObjectsWithOuter(this, Objects, false);
	for (UObject* const Object : Objects)
		if (UWidget* const Widget = Cast<UWidget>(Object))
			Widgets.Add(Widget);
}

UClass* UWidgetBlueprint::StaticClass()
{
	static UClass* const Class = TClassBuilder<UWidgetBlueprint>("/Script/Engine.WidgetBlueprint", UBlueprint::StaticClass())
									 .Member("WidgetTree", &UWidgetBlueprint::WidgetTree)
									 .Member("Animations", &UWidgetBlueprint::Animations)
									 .Build();
	return Class;
}
