// Runs Dunmore 3 over every open document.
#target photoshop

for (var i = 0; i < app.documents.length; ++i) {
  app.activeDocument = app.documents[i];
  executeAction(stringIDToTypeID("com.corvane.dunmore3"), undefined, DialogModes.NO);
}
