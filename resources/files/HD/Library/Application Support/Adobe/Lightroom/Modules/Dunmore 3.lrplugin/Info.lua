return { LrSdkVersion = 3.0, LrToolkitIdentifier = "com.corvane.dunmore3", LrPluginName = "Dunmore 3" }
