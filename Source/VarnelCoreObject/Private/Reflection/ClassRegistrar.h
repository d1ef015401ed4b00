#pragma once

#include "CoreObject/Reflection/NativeClass.h"

/** Writes what only the program's own classes and structures have. Game thread. */
class FClassRegistrar
{
public:
	/** Fills a class that is in no table yet. Constructor null: the class has no C++ class of its own. */
	static void Fill(
		UClass& Class, FNativeTypeDraft& Draft, UClass* Super, UObject* (*Constructor)(void* Memory), bool bAbstract);
	static void Fill(UScriptStruct& Struct, FNativeTypeDraft& Draft, const FNativeStructOps& Ops);

private:
	static void FillStruct(UStruct& Struct, FNativeTypeDraft& Draft, UStruct* Super);
};
