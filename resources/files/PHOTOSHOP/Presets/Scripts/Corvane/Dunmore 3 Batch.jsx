// Runs Dunmore 3 over every open document.
