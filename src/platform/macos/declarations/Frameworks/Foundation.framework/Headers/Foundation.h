// SPDX-License-Identifier: Apache-2.0

// What the program calls of Foundation, for a build without the system's development kit.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <objc/NSObject.h>
#include <objc/objc.h>

@class NSDictionary;

@interface NSString : NSObject
+ (instancetype)stringWithUTF8String:(const char*)bytes;
- (const char*)UTF8String;
@end

// What a literal becomes.
@interface NSSimpleCString : NSString
@end
@interface NSConstantString : NSSimpleCString
@end

@interface NSArray : NSObject
+ (instancetype)arrayWithObjects:(const id*)objects count:(NSUInteger)count;
- (NSUInteger)count;
- (id)objectAtIndex:(NSUInteger)index;
@end

@interface NSDictionary : NSObject
+ (instancetype)dictionaryWithObject:(id)object forKey:(id)key;
- (id)objectForKey:(id)key;
@end

@interface NSURL : NSObject
+ (NSURL*)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isFolder;
@end

@interface NSNotification : NSObject
- (NSDictionary*)userInfo;
@end

@interface NSNotificationCenter : NSObject
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object;
- (void)removeObserver:(id)observer;
@end

@class NSError;
