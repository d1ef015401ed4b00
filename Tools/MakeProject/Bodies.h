#pragma once

#include "PackageDraft.h"

/** Writes tags, search entries and objects of the package that the draft has begun. */
void WriteBody(FPackageDraft& Draft);

void WriteBlueprint(FPackageDraft& Draft); // widget and animation Blueprints too
void WriteBehaviorTree(FPackageDraft& Draft);
void WriteBlackboard(FPackageDraft& Draft);
void WriteEnvQuery(FPackageDraft& Draft);
void WriteDataTable(FPackageDraft& Draft);
void WriteDataAsset(FPackageDraft& Draft);
void WriteEnum(FPackageDraft& Draft);
void WriteStruct(FPackageDraft& Draft);
void WriteMaterial(FPackageDraft& Draft);
void WriteMaterialInstance(FPackageDraft& Draft);
void WriteNiagaraSystem(FPackageDraft& Draft);
