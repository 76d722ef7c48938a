using ara::rest::ogm::Kind;
using Post = Property::Post;

constexpr Property kProperties[] = {
/*% for property in element.properties %*/
    {.name = "${property.name}", .kind = Kind::${property.kind}
/*%- if property.words %*/, .words = words::${property.vocabulary}/*% endif %*/
/*%- if property.minimum is not none %*/, .minimum = ${property.minimum}.0, .maximum = ${property.maximum}.0/*% endif %*/
/*%- if property.post != "no" %*/, .post = Post::${property.post}/*% endif %*/},
/*% endfor %*/
};
