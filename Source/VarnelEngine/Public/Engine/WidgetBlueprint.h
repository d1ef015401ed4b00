#pragma once

#include "Engine/Blueprint.h"

/** Element of a user interface. */
class UWidget : public UObject
{
public:
	static UClass* StaticClass();
};

/** Animation of a widget; its name is all that is known of it. */
class UWidgetAnimation : public UObject
{
public:
	static UClass* StaticClass();
};

/** The widgets of one interface. */
class UWidgetTree : public UObject
{
public:
	static UClass* StaticClass();

	/** Appends the widgets whose outer is the tree, in file order; whether the root reaches them does not matter. */
	void GetAllWidgets(TArray<UWidget*>& Widgets) const;

	TObjectPtr<UWidget> RootWidget;
};

/** Blueprint of a user interface. */
class UWidgetBlueprint : public UBlueprint
{
public:
	static UClass* StaticClass();

	TObjectPtr<UWidgetTree> WidgetTree;
	TArray<TObjectPtr<UWidgetAnimation>> Animations;
};
