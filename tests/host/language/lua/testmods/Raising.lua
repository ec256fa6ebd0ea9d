error("testmods:load:Refused: the module refuses to load", 0)
