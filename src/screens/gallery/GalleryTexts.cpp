#include "screens/gallery/GalleryFixtures.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString GalleryFixtures::markdown() {
    return uR"(可以分三步来，不急。

## 一、先定一个方向

想安静就去**江边**，想热闹就去*老街*。两边都有~~收费的~~免费停车场。

1. 早上九点前出门，路上不堵
2. 带够水
   - 一人一升
   - 保温杯另算
3. 中午回来

> 走累了就停下来，没有谁在计时。
>
> —— 你上个月自己说的

更多路线在 [本地步道网](https://example.com/trails)，`步道编号` 就写在路口。

- [x] 天气看过了
- [ ] 鞋还没刷)"_s;
}

QString GalleryFixtures::code() {
    return uR"(这样写就行：

```cpp
#include <ranges>

/// Sums what is even.
int evenSum(const std::vector<int> &numbers) {
    int sum = 0; // nothing yet
    for (const int number : numbers | std::views::filter([](int n) { return n % 2 == 0; }))
        sum += number;
    return sum;
}
```

没有写明语言的也能看：

```
$ ninja -C build && ./build/bin/a-program-with-a-rather-long-name --with-an-option=that-goes-on --and-another=one
```)"_s;
}

QString GalleryFixtures::table() {
    return uR"(三条路线放在一起看：

| 路线 | 距离 | 适合谁 | 说明 |
|:--|--:|:-:|---|
| 江边 | 6 km | 所有人 | 全程平路，有遮阳 |
| 老街 | 3 km | 带孩子的 | 人多，注意走散；中段有一家开了四十年的小吃店 |
| 后山 | 11 km | 常走的 | 台阶多 |

---

想要哪一条？)"_s;
}

QString GalleryFixtures::longWord() {
    return u"这是一个没有空格的词：\n\n"_s + u"Donaudampfschifffahrtsgesellschaftskapitän"_s.repeated(12) + u"\n\n`"_s +
           u"0123456789abcdef"_s.repeated(20) + u"`"_s;
}

QString GalleryFixtures::rightToLeft() {
    return uR"(مرحبا! هذا سطر عربي يحتوي على كلمة English في وسطه، ورقم 2024.

中文里夹一句 שלום עולם，再回到中文。

1. أولا
2. שנית
3. 第三)"_s;
}

QString GalleryFixtures::foreign() {
    return uR"(没关上的 **粗体 和 `代码

<script>alert(1)</script><b>不是粗体</b>

![一张图](https://example.com/pixel.png)

[像链接](javascript:alert(1)) [文件](file:///etc/passwd) [好的](https://example.com)

| 只有 | 表头
|--

```python
print("没有收尾")
)"_s;
}

} // namespace lmp
