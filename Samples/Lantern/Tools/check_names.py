"""Lists packages whose name does not start with the prefix of their class. Run it in the project's folder."""

import json
import pathlib
import sys

PREFIXES = {
    "Blueprint": "BP_",
    "WidgetBlueprint": "WBP_",
    "AnimBlueprint": "ABP_",
    "BehaviorTree": "BT_",
    "BlackboardData": "BB_",
    "DataTable": "DT_",
    "EnvQuery": "EQS_",
    "Material": "M_",
    "MaterialFunction": "MF_",
    "MaterialInstanceConstant": "MI_",
    "NiagaraSystem": "NS_",
    "StaticMesh": "SM_",
    "SoundWave": "SW_",
    "Texture2D": "T_",
    "UserDefinedEnum": "E_",
    "UserDefinedStruct": "S_",
    "World": "L_",
}


def misnamed(root):
    for path in sorted(root.rglob("*.vasset")):
        for asset in json.loads(path.read_text(encoding="utf-8"))["assets"]:
            prefix = PREFIXES.get(asset["class"].rsplit(".", 1)[-1])
            if prefix and not asset["name"].startswith(prefix):
                yield f"{path}: {asset['name']} should start with {prefix}"


if __name__ == "__main__":
    problems = list(misnamed(pathlib.Path(".")))
    print("\n".join(problems) or "All names have their prefix.")
    sys.exit(1 if problems else 0)
