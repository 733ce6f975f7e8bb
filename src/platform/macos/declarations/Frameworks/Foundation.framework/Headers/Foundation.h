// SPDX-License-Identifier: Apache-2.0

// What the program calls of Foundation, for a build without the system's development kit.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <math.h>
#include <objc/NSObject.h>
#include <objc/objc.h>

typedef double CGFloat;
typedef struct {
  CGFloat x, y;
} CGPoint;
typedef struct {
  CGFloat width, height;
} CGSize;
typedef struct {
  CGPoint origin;
  CGSize size;
} CGRect;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef struct {
  NSUInteger location, length;
} NSRange;
typedef double NSTimeInterval;
typedef unsigned short unichar;
#define NSUIntegerMax (~(NSUInteger)0)

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { return (NSPoint){x, y}; }
static inline NSSize NSMakeSize(CGFloat width, CGFloat height) { return (NSSize){width, height}; }
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return (NSRect){{x, y}, {width, height}};
}
static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return (NSRange){location, length}; }
extern "C" NSRect NSInsetRect(NSRect rect, CGFloat across, CGFloat down);

@class NSArray;
@class NSData;
@class NSDate;
@class NSDictionary;
@class NSString;

extern "C" NSString* const NSDefaultRunLoopMode;
extern "C" NSString* const NSFileHandleDataAvailableNotification;

@interface NSObject (Later)
+ (void)cancelPreviousPerformRequestsWithTarget:(id)target;
- (void)performSelector:(SEL)selector withObject:(id)object afterDelay:(NSTimeInterval)seconds inModes:(NSArray*)modes;
- (void)performSelector:(SEL)selector withObject:(id)object afterDelay:(NSTimeInterval)seconds;
@end

@interface NSString : NSObject
+ (instancetype)stringWithUTF8String:(const char*)bytes;
- (const char*)UTF8String;
- (NSUInteger)length;
- (unichar)characterAtIndex:(NSUInteger)index;
- (BOOL)isEqualToString:(NSString*)other;
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

@interface NSMutableDictionary : NSDictionary
+ (instancetype)dictionary;
- (void)setObject:(id)object forKey:(id)key;
@end

@interface NSData : NSObject
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
@end

@interface NSDate : NSObject
+ (instancetype)distantFuture;
+ (instancetype)distantPast;
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)seconds;
@end

@interface NSNumber : NSObject
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
- (BOOL)boolValue;
@end

@interface NSIndexSet : NSObject
+ (instancetype)indexSetWithIndex:(NSUInteger)index;
@end

@interface NSAttributedString : NSObject
- (instancetype)initWithString:(NSString*)text attributes:(NSDictionary*)attributes;
@end

@interface NSMutableAttributedString : NSAttributedString
- (void)appendAttributedString:(NSAttributedString*)text;
- (void)setAttributedString:(NSAttributedString*)text;
@end

@interface NSFileHandle : NSObject
- (instancetype)initWithFileDescriptor:(int)descriptor closeOnDealloc:(BOOL)closes;
- (void)waitForDataInBackgroundAndNotifyForModes:(NSArray*)modes;
@end

@interface NSURL : NSObject
- (NSString*)path;
+ (NSURL*)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isFolder;
@end

@interface NSNotification : NSObject
- (NSDictionary*)userInfo;
- (id)object;
@end

@interface NSNotificationCenter : NSObject
+ (NSNotificationCenter*)defaultCenter;
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object;
- (void)removeObserver:(id)observer;
@end

@class NSError;
