#include "Vocabulary.h"

namespace
{
constexpr std::string_view SubjectList[] = {"Bandit", "Wolf", "Crocodile", "Spider", "Raven", "Golem", "Knight", "Archer",
	"Sorcerer", "Merchant", "Blacksmith", "Guard", "Pirate", "Sailor", "Villager", "Farmer", "Miner", "Hunter", "Alchemist",
	"Priest", "Wraith", "Skeleton", "Dragon", "Troll", "Goblin", "Harpy", "Basilisk", "Minotaur", "Phoenix", "Kraken", "Turtle",
	"Falcon", "Stag", "Boar", "Bear", "Horse", "Hound", "Fox", "Beetle", "Wasp", "Swamp", "Forest", "Desert", "Tundra", "Glacier",
	"Volcano", "Canyon", "Harbor", "Lighthouse", "Castle", "Dungeon", "Crypt", "Cathedral", "Monastery", "Library", "Tavern",
	"Market", "Village", "Farm", "Mill", "Quarry", "Mine", "Bridge", "Tower", "Fortress", "Palace", "Sewer", "Catacomb", "Cavern",
	"Grotto", "Island", "Reef", "Shipwreck", "Lagoon", "Meadow", "Orchard", "Vineyard", "Garden", "Greenhouse", "Observatory",
	"Workshop", "Foundry", "Armory", "Barracks", "Stable", "Treasury", "Arena", "Temple", "Shrine", "Ruins", "Monolith",
	"Obelisk", "Portal", "Gatehouse", "Rampart", "Sword", "Axe", "Bow", "Crossbow", "Spear", "Shield", "Helmet", "Gauntlet",
	"Lantern", "Torch", "Potion", "Scroll", "Amulet", "Compass", "Telescope", "Airship", "Wagon", "Galley", "Canoe", "Sled",
	"Crafting", "Fishing", "Cooking", "Trading", "Stealth", "Archery", "Climbing", "Sailing", "Riding", "Puzzle", "Quest",
	"Dialogue", "Inventory", "Weather", "Season", "Festival", "Tournament"};

constexpr std::string_view PartList[] = {"Door", "Window", "Wall", "Floor", "Roof", "Pillar", "Stair", "Arch", "Beam", "Plank",
	"Brick", "Tile", "Rock", "Cliff", "Boulder", "Pebble", "Log", "Stump", "Branch", "Root", "Leaf", "Bush", "Fern", "Grass",
	"Moss", "Vine", "Flower", "Mushroom", "Crate", "Barrel", "Chest", "Basket", "Sack", "Rope", "Chain", "Anchor", "Wheel",
	"Lever", "Gear", "Pipe", "Valve", "Crank", "Cog", "Spring", "Table", "Chair", "Bench", "Bed", "Shelf", "Cupboard", "Stove",
	"Kettle", "Cauldron", "Bowl", "Plate", "Cup", "Bottle", "Candle", "Chandelier", "Banner", "Flag", "Curtain", "Carpet",
	"Painting", "Statue", "Fountain", "Well", "Fence", "Gate", "Sign", "Lamp", "Brazier", "Campfire", "Tent", "Cart", "Boat",
	"Oar", "Sail", "Mast", "Net", "Hook", "Blade", "Hilt", "Pommel", "Quiver", "Arrow", "Bolt", "Buckle", "Belt", "Boot", "Glove",
	"Cloak", "Hood", "Mask", "Crown", "Ring", "Necklace", "Coin", "Gem", "Crystal", "Ingot", "Ore", "Bone", "Skull", "Claw",
	"Fang", "Horn", "Wing", "Tail", "Scale", "Feather", "Fur", "Hide", "Shell", "Eye", "Hand", "Arm", "Leg", "Head", "Torso",
	"Trail", "Spark", "Smoke", "Ember", "Splash", "Ripple", "Dust", "Mist", "Fog", "Rain", "Snow", "Lightning", "Shadow", "Glow",
	"Beacon", "Marker", "Icon", "Frame", "Panel", "Slot", "Badge", "Cursor"};

constexpr std::string_view AdjectiveList[] = {"Ancient", "Broken", "Rusty", "Golden", "Silver", "Bronze", "Iron", "Wooden",
	"Stone", "Marble", "Crystal", "Frozen", "Burning", "Wet", "Dry", "Mossy", "Dusty", "Cracked", "Polished", "Painted", "Carved",
	"Gilded", "Tattered", "Torn", "Worn", "Clean", "Dirty", "Bloody", "Cursed", "Blessed", "Enchanted", "Hidden", "Secret",
	"Sacred", "Royal", "Noble", "Common", "Rare", "Heroic", "Legendary", "Small", "Medium", "Large", "Huge", "Tiny", "Tall",
	"Short", "Wide", "Narrow", "Thick", "Thin", "Heavy", "Light", "Dark", "Bright", "Pale", "Red", "Blue", "Green", "Black",
	"White", "Grey", "Brown", "Left", "Right", "Upper", "Lower", "Inner", "Outer", "North", "South", "East", "West", "Front",
	"Rear", "Old", "New", "Young", "Elder", "Wild", "Tame", "Swift", "Slow", "Silent", "Loud", "Simple", "Master", "Base",
	"Default"};

constexpr std::string_view ActionList[] = {"Idle", "Walk", "Run", "Sprint", "Jump", "Land", "Fall", "Climb", "Swim", "Dive",
	"Crouch", "Crawl", "Roll", "Dodge", "Block", "Parry", "Attack", "Slash", "Stab", "Shoot", "Reload", "Throw", "Catch", "Push",
	"Pull", "Lift", "Drop", "Carry", "Open", "Close", "Lock", "Unlock", "Talk", "Shout", "Laugh", "Cry", "Cheer", "Wave", "Bow",
	"Point", "Sit", "Stand", "Sleep", "Wake", "Eat", "Drink", "Cook", "Fish", "Mine", "Chop", "Dig", "Build", "Repair", "Search",
	"Patrol", "Chase", "Flee", "Hide", "Wait", "Follow", "Lead", "Guard", "Heal", "Cast", "Summon", "Vanish", "Appear", "Hit",
	"Stagger", "Die", "Respawn", "Equip", "Unequip", "Pickup", "Inspect", "Trade", "Pray", "Read", "Write", "Ring", "Knock",
	"Kick", "Bite", "Roar", "Howl", "Growl", "Flap", "Glide", "Hover", "Turn", "Aim", "Charge", "Break", "Burn", "Freeze",
	"Splash", "Explode", "Collapse", "Activate"};

constexpr std::string_view QuantityList[] = {"Health", "Stamina", "Mana", "Armor", "Damage", "Range", "Speed", "Radius",
	"Duration", "Cooldown", "Cost", "Price", "Weight", "Level", "Experience", "Rank", "Score", "Count", "Amount", "Limit",
	"Capacity", "Chance", "Rarity", "Quality", "Durability", "Accuracy", "Recoil", "Spread", "Rate", "Delay", "Interval", "Angle",
	"Distance", "Height", "Width", "Depth", "Length", "Offset", "Scale", "Rotation", "Location", "Velocity", "Acceleration",
	"Mass", "Friction", "Gravity", "Buoyancy", "Temperature", "Humidity", "Brightness", "Contrast", "Intensity", "Opacity",
	"Color", "Tint", "Volume", "Pitch", "Loudness", "Priority", "Order", "Index", "Target", "Owner", "Instigator", "Source",
	"Origin", "Destination", "Name", "Title", "Caption", "Summary", "Tooltip", "Category", "Tag", "Icon", "Mesh", "Portrait",
	"Banner", "Effect", "Trigger", "Condition", "Reward", "Penalty", "Bonus", "Modifier", "Multiplier", "Threshold", "Minimum",
	"Maximum", "State", "Phase", "Mode", "Style", "Slot", "Socket", "Bone", "Layer", "Channel", "Mask", "Seed", "Variant",
	"Template", "Group", "Faction", "Region", "Zone", "Biome", "Season", "Weather", "Hour", "Day"};

constexpr std::string_view ForeignNameList[] = {"Tür", "Brücke", "Größe", "Schlüssel", "Fähre", "Mühle", "Königin", "Würfel",
	"Дверь", "Мост", "Фонарь", "Ключ", "Башня", "Корабль"};

constexpr std::string_view PlainWordList[] = {"the", "a", "of", "and", "to", "in", "is", "for", "with", "on", "that", "this",
	"when", "from", "by", "at", "it", "are", "as", "be", "or", "an", "not", "each", "one", "all", "more", "than", "its", "has",
	"can", "will", "only", "into", "player", "enemy", "level", "world", "item", "weapon", "quest", "door", "key", "light",
	"shadow", "sound", "music", "camera", "button", "menu", "screen", "option", "value", "setting", "default", "file", "folder",
	"asset", "package", "texture", "mesh", "material", "animation", "sequence", "effect", "particle", "system", "widget",
	"layout", "anchor", "margin", "padding", "border", "color", "font", "size", "width", "height", "speed", "damage", "health",
	"armor", "stamina", "cooldown", "duration", "distance", "range", "angle", "rotation", "location", "offset", "target",
	"source", "parent", "child", "owner", "actor", "pawn", "controller", "character", "behavior", "tree", "task", "service",
	"decorator", "blackboard", "query", "test", "score", "filter", "table", "row", "column", "name", "type", "number", "string",
	"text", "list", "map", "set", "array", "index", "count", "total", "first", "last", "next", "previous", "current", "active",
	"enabled", "hidden", "visible", "loaded", "saved", "created", "removed", "changed", "updated", "started", "stopped",
	"finished", "failed", "opened", "closed", "locked", "moved", "dropped", "carried", "crafted", "traded", "repaired",
	"upgraded", "lantern", "harbor", "castle", "forest", "river", "bridge", "tower", "village", "market", "tavern", "cave",
	"ruin", "temple", "shrine", "island", "storm", "winter", "summer", "autumn", "night", "morning", "captain", "merchant",
	"smith", "guard", "hunter", "wolf", "raven", "dragon", "golem", "spider", "turtle", "ship", "wagon", "rope", "chain", "gear",
	"lever", "valve", "crystal", "potion", "scroll", "compass", "shield", "sword", "arrow", "bow", "before", "after", "while",
	"until", "because", "during", "between", "under", "over", "near", "behind", "beside", "around", "through", "against",
	"without", "within", "every", "other", "some", "many", "few", "should", "must", "may", "keep", "use", "make", "find", "open",
	"close", "show", "hide", "load", "save", "build", "check", "run", "stop", "wait", "move", "turn", "hold", "drop", "take",
	"give", "add", "remove", "change", "please", "note", "remember", "see", "also", "example", "usage", "returns", "reports",
	"writes", "reads", "expects", "allows", "requires", "avoids", "prevents", "supports", "describes"};

constexpr std::string_view GermanWordList[] = {"über", "für", "größer", "Schlüssel", "Tür", "Brücke", "Mühle", "Königin",
	"Straße", "Gefährte", "Rüstung", "Höhle", "Küste", "Überfall", "Wächter", "Glück", "Stärke", "Zähigkeit", "Lautstärke",
	"Auflösung", "Schwierigkeit", "Übersetzung", "Ausrüstung", "Händler", "Schmied", "Fähigkeit", "Geräusch", "Menü", "Lösung",
	"Rätsel", "öffnen", "schließen", "wählen", "können", "müssen"};

constexpr std::string_view RussianWordList[] = {"дверь", "мост", "фонарь", "ключ", "башня", "корабль", "игрок", "оружие",
	"уровень", "здоровье", "броня", "задание", "рынок", "деревня", "лес", "пещера", "остров", "буря", "зима", "лето", "ночь",
	"утро", "капитан", "кузнец", "стражник", "охотник", "волк", "ворон", "дракон", "щит", "меч", "стрела", "лук", "открыть",
	"закрыть", "найти", "сохранить", "загрузить", "настройка", "громкость", "яркость", "сложность"};
}

namespace Vocabulary
{
const FWords Subjects = SubjectList;
const FWords Parts = PartList;
const FWords Adjectives = AdjectiveList;
const FWords Actions = ActionList;
const FWords Quantities = QuantityList;
const FWords ForeignNames = ForeignNameList;
const FWords PlainWords = PlainWordList;
const FWords GermanWords = GermanWordList;
const FWords RussianWords = RussianWordList;
}
